#include <Util/TimeUpdater.h>

#include <QtCore/QTime>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>

#include <algorithm>
#include <limits>

namespace Zelkor::Util
{

TimeUpdater::TimeUpdater(int outputStart, int inputStart, int inputEnd, QString const& format, QTextDocument* document,
                         bool reverse)
    : QObject(document)
    , current_(inputStart)
    , outputStart_(outputStart)
    , inputStart_(inputStart)
    , inputEnd_(inputEnd)
    , format_(format)
    , reverse_(reverse)
    , document_(document)
{}

int TimeUpdater::calculateOutputTime(int time) const
{
    // Compute with 64 bits, because the sum of two times can overflow an int.
    qint64 const start = outputStart_;
    qint64 const end = start + inputEnd_ - inputStart_;
    qint64 const raw = reverse_ ? start + inputEnd_ - time : start + time - inputStart_;
    // If inputEnd_ is less than inputStart_, the result must be start. Therefore, std::max() is applied last.
    qint64 const output = std::max(start, std::min(end, raw));
    return static_cast<int>(qBound<qint64>(0, output, std::numeric_limits<int>::max()));
}

void TimeUpdater::setCurrentTime(int time)
{
    current_ = time;
    if (!document_) {
        return;
    }
    // addMSecs() wraps at 24 hours. This is deliberate: the text is a time of day.
    QString const text = QTime(0, 0, 0, 0).addMSecs(calculateOutputTime(time)).toString(format_);
    if (text == document_->toPlainText()) {
        return;
    }
    QTextCursor cursor(document_);
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

int TimeUpdater::currentTime() const
{
    return current_;
}

} // namespace Zelkor::Util
