#include <Util/TimeUpdater.h>

#include <Base/Throw.h>

#include <QtCore/QTime>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>

#include <algorithm>
#include <limits>
#include <stdexcept>

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
{
    if (!document) {
        ZELKOR_THROW(std::invalid_argument("TimeUpdater use without document!"));
    }
}

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
    QString const shown = document->toPlainText();
    QString const text = QTime(0, 0, 0, 0).addMSecs(calculateOutputTime(time)).toString(format);
    current = time;
    if (text == shown) {
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
