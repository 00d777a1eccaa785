#pragma once

#include <nlohmann/json.hpp>

/// A job document in which every member of the format is present and holds something.
inline nlohmann::json completeJobDocument()
{
    return nlohmann::json::parse(R"({
        "cdmVersion": "2.3",
        "details": {
            "id": "WO-1",
            "timestamp": "2026-03-01T08:15:00+0100",
            "techInfo": {"techId": "T-17"},
            "contractorId": "C-4",
            "jobManagerAttributes": {"gate": {"label": "Gate code", "value": "1234"}, "free": [1, {"a": null}]},
            "workOrderLabel": "Order",
            "workflowTypeName": "Installation",
            "customerName": "Müller 様",
            "managedByInfo": "Region North",
            "managementState": "assigned",
            "teamTechIds": ["T-17", "T-18"],
            "archived": false,
            "modifiedOn": "2026-03-01T08:15:00.000Z"
        },
        "tests": [
            {
                "testType": "manual",
                "testTypeDisplayName": "Manual step",
                "description": "Look at it",
                "site": "Cabinet 4",
                "guideFile": "guides/look.pdf",
                "configuration": "a=1\nb=2",
                "configurationData": {"prompt": "Connected?", "type": "yesNo"},
                "required": true,
                "uiIndex": "0",
                "attributes": {"port": {"label": "Port", "value": "3"}},
                "results": {"status": "passed", "time": "2026-03-01T09:00:00Z", "response": "yes", "data": [1.5]},
                "deployableTo": [{"name": "handheld", "version": "4"}, {"name": "bench", "version": "5"}]
            },
            {
                "testType": "loss",
                "testLocations": [
                    {
                        "location": "A",
                        "uiIndex": "1_0",
                        "configuration": "c=3",
                        "required": false,
                        "attributes": {"fibre": 7},
                        "results": {"status": "failed", "time": "2026-03-01T10:00:00Z", "response": "no", "data": 4}
                    },
                    {"location": "B"}
                ]
            }
        ]
    })");
}
