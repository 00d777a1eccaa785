#include "tests/plugin/QmlTypesBlock.h"

#include <algorithm>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QRegularExpression>

namespace jobmanager_test {

namespace {

/// Reads the words of a file from its first to its last.
class Reader
{
public:
    explicit Reader(const QString& text)
    {
        // A comment, a text in quotes, one of the marks, a word.
        static const QRegularExpression pattern(QStringLiteral(R"(//[^\n]*|"[^"]*"|[{}\[\]:;,]|[\w.\-]+)"));
        for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
            const QString word = matches.next().captured();
            if (!word.startsWith(QLatin1String("//"))) {
                m_words.append(word);
            }
        }
    }

    bool atEnd() const { return m_next >= m_words.size(); }
    QString look() const { return m_words.value(m_next); }
    QString take() { return m_words.value(m_next++); }
    bool skip(const QString& word)
    {
        if (look() != word) {
            return false;
        }
        ++m_next;
        return true;
    }

private:
    QStringList m_words;
    int m_next = 0;
};

QString unquoted(QString word)
{
    return word.remove(QLatin1Char('"'));
}

/// A word, or the words of a list or a map.
QStringList readValue(Reader& reader)
{
    const QString first = reader.take();
    if (first != QLatin1String("[") && first != QLatin1String("{")) {
        return { unquoted(first) };
    }
    QStringList words;
    while (!reader.atEnd()) {
        const QString word = reader.take();
        if (word == QLatin1String("]") || word == QLatin1String("}")) {
            break;
        }
        if (word != QLatin1String(",") && word != QLatin1String(":")) {
            words.append(unquoted(word));
        }
    }
    return words;
}

/// A block from behind its kind and its opening brace to its end.
QmlTypesBlock readBlock(Reader& reader, const QString& kind)
{
    QmlTypesBlock block;
    block.kind = kind;
    while (!reader.atEnd() && !reader.skip(QStringLiteral("}"))) {
        const QString name = reader.take();
        if (reader.skip(QStringLiteral(":"))) {
            block.values.insert(name, readValue(reader));
        } else if (reader.skip(QStringLiteral("{"))) {
            block.blocks.push_back(readBlock(reader, name));
        }
    }
    return block;
}

/// A type as such a file names it, pointers with their star.
QString fileType(const QByteArray& type)
{
    if (type == "QString") {
        return QStringLiteral("string");
    }
    return QString::fromLatin1(type);
}

QString fileType(const QmlTypesBlock& block)
{
    const bool isPointer = block.value(QStringLiteral("isPointer")) == QLatin1String("true");
    return block.value(QStringLiteral("type")) + (isPointer ? QStringLiteral("*") : QString());
}

QString propertyLine(const QString& type, const QString& name, bool isReadonly)
{
    return QStringLiteral("property %1 %2%3").arg(type, name, isReadonly ? QStringLiteral(" readonly") : QString());
}

QString methodLine(const QString& kind, const QString& type, const QString& name, const QStringList& parameters)
{
    const QString result = type.isEmpty() ? QStringLiteral("void") : type;
    return QStringLiteral("%1 %2 %3(%4)").arg(kind, result, name, parameters.join(QStringLiteral(", ")));
}

QString methodLine(const QmlTypesBlock& block)
{
    QStringList parameters;
    for (const QmlTypesBlock& parameter : block.blocks) {
        parameters.append(fileType(parameter) + QLatin1Char(' ') + parameter.value(QStringLiteral("name")));
    }
    return methodLine(block.kind.toLower(), fileType(block), block.value(QStringLiteral("name")), parameters);
}

QString methodLine(const QMetaMethod& method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i) {
        parameters.append(fileType(method.parameterTypes().at(i)) + QLatin1Char(' ')
            + QString::fromLatin1(method.parameterNames().at(i)));
    }
    const bool isSignal = method.methodType() == QMetaMethod::Signal;
    return methodLine(isSignal ? QStringLiteral("signal") : QStringLiteral("method"), fileType(method.typeName()),
        QString::fromLatin1(method.name()), parameters);
}

QString enumLine(const QMetaEnum& values)
{
    QStringList words;
    for (int i = 0; i < values.keyCount(); ++i) {
        words << QString::fromLatin1(values.key(i)) << QString::number(values.value(i));
    }
    return QStringLiteral("enum %1 %2").arg(QString::fromLatin1(values.name()), words.join(QLatin1Char(' ')));
}

bool isImplied(const QMetaMethod& method, const QStringList& impliedSignals)
{
    return method.methodType() == QMetaMethod::Signal && method.parameterCount() == 0
        && impliedSignals.contains(QString::fromLatin1(method.name()));
}

} // namespace

std::vector<QmlTypesBlock> QmlTypesBlock::all(const QString& ofKind) const
{
    std::vector<QmlTypesBlock> found;
    std::copy_if(blocks.begin(), blocks.end(), std::back_inserter(found),
        [&](const QmlTypesBlock& block) { return block.kind == ofKind; });
    return found;
}

QmlTypesBlock readQmlTypes(const QString& text)
{
    Reader reader(text);
    while (!reader.atEnd()) {
        if (reader.take() == QLatin1String("Module") && reader.skip(QStringLiteral("{"))) {
            return readBlock(reader, QStringLiteral("Module"));
        }
    }
    return {};
}

QStringList published(const QmlTypesBlock& component)
{
    QStringList lines;
    for (const QmlTypesBlock& block : component.blocks) {
        const QString name = block.value(QStringLiteral("name"));
        if (block.kind == QLatin1String("Enum")) {
            lines.append(QStringLiteral("enum %1 %2").arg(name, block.value(QStringLiteral("values"))));
        } else if (block.kind == QLatin1String("Property")) {
            lines.append(propertyLine(
                fileType(block), name, block.value(QStringLiteral("isReadonly")) == QLatin1String("true")));
        } else {
            lines.append(methodLine(block));
        }
    }
    return lines;
}

QStringList published(const QMetaObject& meta)
{
    QStringList lines;
    QStringList impliedSignals;
    for (int i = meta.enumeratorOffset(); i < meta.enumeratorCount(); ++i) {
        lines.append(enumLine(meta.enumerator(i)));
    }
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QString name = QString::fromLatin1(property.name());
        lines.append(propertyLine(fileType(property.typeName()), name, !property.isWritable()));
        impliedSignals.append(name + QStringLiteral("Changed"));
    }
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.access() == QMetaMethod::Public && !isImplied(method, impliedSignals)) {
            lines.append(methodLine(method));
        }
    }
    return lines;
}

} // namespace jobmanager_test
