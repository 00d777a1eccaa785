#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QTranslator>
#include <utility>

namespace jobmanager_test {

/// Answers each text with itself in other words, and notes what it was asked for. Installed as long as it lives.
class OtherWords : public QTranslator
{
public:
    OtherWords() { QCoreApplication::installTranslator(this); }
    ~OtherWords() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* text, const char* disambiguation, int number) const override
    {
        const QStringList asked{ QString::fromUtf8(context), QString::fromUtf8(text),
            disambiguation == nullptr ? QStringLiteral("none") : QString::fromUtf8(disambiguation),
            QString::number(number) };
        m_asked.append(asked.join(QStringLiteral(", ")));
        return QStringLiteral("anders: ") + QString::fromUtf8(text);
    }

    QStringList takeAsked() { return std::exchange(m_asked, {}); }

private:
    mutable QStringList m_asked;
};

} // namespace jobmanager_test
