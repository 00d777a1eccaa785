import QtQuick 2.15
import QtTest 1.15
import TestSupport 1.0

import "../../../demo/qml"

Item {
    width: 400
    height: 300

    Component {
        id: listComponent

        ListView {
            id: list

            property alias keeper: keeper

            width: 400
            height: 300
            currentIndex: -1
            model: JobRows {}
            delegate: Text {
                required property string jobID

                height: 40
                text: jobID
                textFormat: Text.PlainText
            }

            PlaceKeeper {
                id: keeper
                view: list
            }
        }
    }

    TestCase {
        id: test
        name: "PlaceKeeper"
        when: windowShown

        property var list: null

        function ids(count) {
            return Array.from({ length: count }, (_, i) => "job " + i)
        }

        /// Where a job is on the screen; undefined if it isn't on it.
        function placeOf(id) {
            for (let y = 0; y < list.height; ++y) {
                const item = list.itemAt(0, list.contentY + y)
                if (item !== null && item.jobID === id)
                    return item.y - list.contentY
            }
            return undefined
        }

        /// The list has come to rest with its rows on the screen.
        function settle() {
            waitForRendering(list)
        }

        function init() {
            list = createTemporaryObject(listComponent, test.parent)
            list.model.setIds(ids(100))
            settle()
        }

        function scrollSoThatJob50IsAt20() {
            list.positionViewAtIndex(50, ListView.Beginning)
            list.contentY -= 20
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_jobsStayInPlaceWhenOneComesInOnTop() {
            scrollSoThatJob50IsAt20()
            list.model.setIds(["new"].concat(ids(100)))
            compare(placeOf("job 50"), 20)
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_jobsStayInPlaceWhenOnesAboveLeave() {
            scrollSoThatJob50IsAt20()
            list.model.setIds(ids(100).slice(7))
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_jobsStayInPlaceWhenNothingChanges() {
            scrollSoThatJob50IsAt20()
            list.model.setIds(ids(100))
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_jobsStayInPlaceOverManyResetsInARow() {
            scrollSoThatJob50IsAt20()
            for (let i = 1; i <= 10; ++i)
                list.model.setIds(Array.from({ length: i }, (_, n) => "new " + n).concat(ids(100)))
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_screenDoesNotFollowItsFirstJobToTheTop() {
            list.positionViewAtIndex(50, ListView.Beginning)
            settle()
            list.model.setIds(["job 50"].concat(ids(100).filter(id => id !== "job 50")))
            settle()
            compare(placeOf("job 51"), 40)
        }

        function test_nextJobOnTheScreenIsKeptWhenTheFirstLeaves() {
            scrollSoThatJob50IsAt20()
            list.model.setIds(ids(100).filter(id => id !== "job 49"))
            settle()
            compare(placeOf("job 50"), 20)
        }

        function test_scrollPositionStaysWhenAllJobsOfTheScreenLeave() {
            scrollSoThatJob50IsAt20()
            const contentY = list.contentY
            list.model.setIds(ids(100).map(id => "other " + id))
            settle()
            compare(list.contentY, contentY)
        }

        function test_listAtItsBeginningStaysThere() {
            list.model.setIds(["new"].concat(ids(100)))
            settle()
            compare(placeOf("new"), 0)
        }

        function test_listAtItsEndStaysFullWhenJobsLeave() {
            list.positionViewAtEnd()
            settle()
            list.model.setIds(ids(100).slice(0, 95))
            settle()
            compare(placeOf("job 94"), 260)
        }

        function test_listThatBecomesShorterThanTheScreenShowsAllOfIt() {
            scrollSoThatJob50IsAt20()
            list.model.setIds(["job 50", "job 51"])
            settle()
            compare(placeOf("job 50"), 0)
            compare(placeOf("job 51"), 40)
        }

        function test_emptiedListFillsAgainFromItsBeginning() {
            scrollSoThatJob50IsAt20()
            list.model.setIds([])
            settle()
            compare(list.count, 0)
            list.model.setIds(ids(100))
            settle()
            compare(placeOf("job 0"), 0)
        }

        function test_selectionStaysWithTheJob() {
            list.keeper.select("job 5")
            list.model.setIds(["new"].concat(ids(100)))
            compare(list.keeper.selectedId, "job 5")
            compare(list.currentIndex, 6)
            settle()
            compare(list.currentIndex, 6)
        }

        function test_selectionOfAJobFarFromTheScreenStaysWithoutScrolling() {
            list.keeper.select("job 5")
            scrollSoThatJob50IsAt20()
            list.model.setIds(["new"].concat(ids(100)))
            settle()
            compare(list.currentIndex, 6)
            compare(placeOf("job 50"), 20)
        }

        function test_jobThatTakesTheRowOfALeavingOneIsSelected() {
            list.keeper.select("job 5")
            list.model.setIds(ids(100).filter(id => id !== "job 5"))
            compare(list.keeper.selectedId, "job 6")
            compare(list.currentIndex, 5)
        }

        function test_lastJobIsSelectedWhenTheSelectedLastOneLeaves() {
            list.keeper.select("job 99")
            list.model.setIds(ids(99))
            compare(list.keeper.selectedId, "job 98")
            compare(list.currentIndex, 98)
        }

        function test_nothingIsSelectedByAReset() {
            list.model.setIds(ids(50))
            settle()
            compare(list.keeper.selectedId, "")
            compare(list.currentIndex, -1)
        }

        function test_selectionByKeysIsASelectionById() {
            list.keeper.select("job 5")
            list.incrementCurrentIndex()
            compare(list.keeper.selectedId, "job 6")
        }

        function test_emptyIdSelectsNone() {
            list.keeper.select("job 5")
            list.keeper.select("")
            compare(list.keeper.selectedId, "")
            compare(list.currentIndex, -1)
        }

        function test_hiddenListKeepsItsPlace() {
            scrollSoThatJob50IsAt20()
            list.visible = false
            list.model.setIds(["new"].concat(ids(100)))
            list.visible = true
            settle()
            compare(placeOf("job 50"), 20)
        }
    }
}
