#include <Util/TimeUpdater.h>

#include <QtCore/QTime>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>

#include <algorithm>
#include <limits>

namespace Zelkor::Util
{

TimeUpdater::TimeUpdater(int outputStartTime, int inputStartTime, int inputEndTime, QString const& outputFormat,
                         QTextDocument* outputDocument, bool countDown)
    : QObject(outputDocument)
    , current(inputStartTime)
    , outputStart(outputStartTime)
    , inputStart(inputStartTime)
    , inputEnd(inputEndTime)
    , format(outputFormat)
    , reverse(countDown)
    , document(outputDocument)
{}

int TimeUpdater::calculateOutputTime(int time) const
{
    // Wider than the times, whose sums need not fit.
    qint64 const start = outputStart;
    qint64 const end = start + inputEnd - inputStart;
    qint64 const raw = reverse ? start + inputEnd - time : start + time - inputStart;
    qint64 const output = std::max(start, std::min(end, raw));
    return static_cast<int>(qBound<qint64>(0, output, std::numeric_limits<int>::max()));
}

void TimeUpdater::setCurrentTime(int time)
{
    current = time;
    if (!document) {
        return;
    }
    QString const text = QTime(0, 0, 0, 0).addMSecs(calculateOutputTime(time)).toString(format);
    if (text == document->toPlainText()) {
        return;
    }
    QTextCursor cursor(document);
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

int TimeUpdater::currentTime() const
{
    return current;
}

} // namespace Zelkor::Util
