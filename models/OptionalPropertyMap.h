#pragma once

#include <memory>
#include <QQmlPropertyMap>

namespace jobmanager_ui {

/// The optional properties of a job or a test as QML reads and edits them, by name. Emits valueChanged for a write
/// from QML, and never for what `show` puts in; a value equal to the one that is held is no write.
///
/// It must not end while one of its own signals is being delivered, since the delivery goes on to use it: see
/// OptionalPropertyMapEnd. Belongs to C++ in whatever way JavaScript came by it. Main thread only.
class OptionalPropertyMap : public QQmlPropertyMap
{
    Q_OBJECT
    Q_DISABLE_COPY(OptionalPropertyMap)

public:
    /// A map without properties.
    explicit OptionalPropertyMap(QObject* parent = nullptr);

    /// Puts in a property, or the value of one that is there.
    void show(const QString& name, const QVariant& value);

    /// Ends the map: at once, or, while a signal of it is being delivered, when that is over and the event loop has
    /// its turn. From now on it has no parent and must not be used.
    void end();

protected:
    QVariant updateValue(const QString& key, const QVariant& input) override;

private Q_SLOTS:
    void endDelivery();

private:
    /// Counts the deliveries of this property's values as over when its signal comes.
    void hearEndOfDelivery(int property);

    /// Writes and shown values, one inside the other, whose signals are not all delivered yet.
    int m_deliveries = 0;
    bool m_ended = false;
};

/// Ends a map that its owner drops.
struct OptionalPropertyMapEnd
{
    void operator()(OptionalPropertyMap* map) const { map->end(); }
};

/// A map with its owner.
using OptionalPropertyMapPointer = std::unique_ptr<OptionalPropertyMap, OptionalPropertyMapEnd>;

} // namespace jobmanager_ui
