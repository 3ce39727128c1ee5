#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtWidgets/QProxyStyle>

#include <initializer_list>
#include <vector>

namespace Zelkor::Testing
{

/// Forwards all calls to Qt's Fusion style. Records every call of polish(QWidget*) and unpolish(QWidget*).
class RecordingStyle : public QProxyStyle
{
public:
    enum class Operation { Polish, Unpolish };

    struct Call
    {
        Operation operation;
        QWidget const* widget; // for comparison only: the widget may have been destroyed since the call
        QStringList values;    // the values of the recorded properties at the time of the call
    };
    using Calls = QVector<Call>;

    /// \param properties  Names of the widget properties whose values are recorded at each call. The strings must
    ///                    outlive this object.
    explicit RecordingStyle(std::initializer_list<char const*> properties = {});

    /// All recorded calls, in order. Tests can clear this list.
    Calls calls;

    /// Returns the recorded calls for \a widget, in order.
    Calls CallsFor(QWidget const* widget) const;

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;

private:
    void Record(Operation operation, QWidget const* widget);

    std::vector<char const*> properties_;
};

bool operator==(RecordingStyle::Call const& a, RecordingStyle::Call const& b);

/// Formats \a calls for the failure messages of QCOMPARE. QtTest deletes the returned string.
char* toString(RecordingStyle::Calls const& calls);

/// Returns the two calls that RecordingStyle records when \a widget is polished again: unpolish(), then polish(). Both
/// calls contain the property values \a values.
RecordingStyle::Calls Repolishing(QWidget const* widget, QStringList const& values = {});

} // namespace Zelkor::Testing
