#pragma once

/// \file
/// A text document that shows a running time.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

QT_BEGIN_NAMESPACE
class QTextDocument;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Writes a running time to a text document. It converts an input time, such as the position in a film, to an output
/// time, such as the position in a clip or the time that remains. All times are in milliseconds.
///
/// The text is a time of day, formatted by QTime. It therefore starts again at zero after 24 hours.
///
/// \code
/// auto* const left = new TimeUpdater(0, clipStart, clipEnd, QStringLiteral("mm:ss"), label->document(), true);
/// QObject::connect(player, &Player::positionChanged, left, &TimeUpdater::setCurrentTime);
/// \endcode
///
/// The document owns the updater. Use it on the thread of its document.
class ZQTUTIL_EXPORT TimeUpdater : public QObject
{
    Q_OBJECT
    /// The last input time in milliseconds.
    Q_PROPERTY(int currentTime READ currentTime WRITE setCurrentTime)

public:
    /// Creates an updater. Does not write to the document yet.
    ///
    /// \param outputStart  the smallest output time in milliseconds
    /// \param inputStart   the start of the input range in milliseconds
    /// \param inputEnd     the end of the input range in milliseconds
    /// \param format       the format of the text, see `QTime::toString()`
    /// \param document     the document to write to, and the owner. If it is null, nothing is written.
    /// \param reverse      true to count down, false to count up
    TimeUpdater(int outputStart, int inputStart, int inputEnd, QString const& format, QTextDocument* document,
                bool reverse);

    /// Returns the output time in milliseconds for the input time \a time, in milliseconds.
    ///
    /// The result is limited to the range from the output start to the output start plus the length of the input range.
    /// It is never negative.
    int calculateOutputTime(int time) const;

    /// Sets the input time to \a time milliseconds. Writes to the document only if its text changes.
    void setCurrentTime(int time);

    /// Returns the last input time in milliseconds; initially the start of the input range.
    int currentTime() const;

private:
    int current_;
    int outputStart_;
    int inputStart_;
    int inputEnd_;
    QString format_;
    bool reverse_;
    QTextDocument* document_;
};

} // namespace Util
} // namespace Zelkor
