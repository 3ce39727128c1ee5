#include <support/displays/RecordingStyle.h>

#include <QtTest/QTest>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <iterator>

namespace Zelkor::Testing
{

RecordingStyle::RecordingStyle(std::initializer_list<char const*> properties)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    , properties_(properties)
{}

RecordingStyle::Calls RecordingStyle::CallsFor(QWidget const* widget) const
{
    Calls found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found),
                 [widget](Call const& call) { return call.widget == widget; });
    return found;
}

void RecordingStyle::polish(QWidget* widget)
{
    Record(Operation::Polish, widget);
    QProxyStyle::polish(widget);
}

void RecordingStyle::unpolish(QWidget* widget)
{
    Record(Operation::Unpolish, widget);
    QProxyStyle::unpolish(widget);
}

void RecordingStyle::Record(Operation operation, QWidget const* widget)
{
    QStringList values;
    for (char const* const property : properties_) {
        values += widget->property(property).toString();
    }
    calls += Call{operation, widget, values};
}

bool operator==(RecordingStyle::Call const& a, RecordingStyle::Call const& b)
{
    return a.operation == b.operation && a.widget == b.widget && a.values == b.values;
}

char* toString(RecordingStyle::Calls const& calls)
{
    QStringList lines;
    for (RecordingStyle::Call const& call : calls) {
        QString const operation =
            call.operation == RecordingStyle::Operation::Polish ? QStringLiteral("polish") : QStringLiteral("unpolish");
        lines += QStringLiteral("%1 %2 (%3)")
                     .arg(operation)
                     .arg(reinterpret_cast<quintptr>(call.widget), 0, 16)
                     .arg(call.values.join(QStringLiteral(", ")));
    }
    return QTest::toString(lines.join(QLatin1Char('\n')));
}

RecordingStyle::Calls Repolishing(QWidget const* widget, QStringList const& values)
{
    return {{RecordingStyle::Operation::Unpolish, widget, values}, {RecordingStyle::Operation::Polish, widget, values}};
}

} // namespace Zelkor::Testing
