#pragma once

/// \file
/// A class that writes a changing time to a text document.

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

/// Writes a changing time to a text document. The updater converts an input time, for example the position in a film,
/// to an output time, for example the position in a clip or the remaining time. All times are in milliseconds.
///
/// The text is a time of day, formatted by QTime. It therefore starts again at zero after 24 hours.
///
/// \code
/// auto* const left = new TimeUpdater(0, clipStart, clipEnd, QStringLiteral("mm:ss"), label->document(), true);
/// QObject::connect(player, &Player::positionChanged, left, &TimeUpdater::setCurrentTime);
/// \endcode
///
/// The document owns the updater. Use the updater on the thread of the document.
class ZQTUTIL_EXPORT TimeUpdater : public QObject
{
    Q_OBJECT
    /// The input time that was last set, in milliseconds; initially the start of the input range.
    Q_PROPERTY(int currentTime READ currentTime WRITE setCurrentTime)

public:
    /// Creates an updater. Does not write to the document yet.
    ///
    /// \param outputStart  the smallest output time in milliseconds
    /// \param inputStart   the start of the input range in milliseconds
    /// \param inputEnd     the end of the input range in milliseconds
    /// \param format       the format of the text, see `QTime::toString()`
    /// \param document     the document to write to; it owns the updater. If \a document is null, the updater writes
    ///                     nothing, and the caller owns the updater.
    /// \param reverse      true if the output time counts down while the input time increases; false if it counts up
    TimeUpdater(int outputStart, int inputStart, int inputEnd, QString const& format, QTextDocument* document,
                bool reverse);

    /// Converts the input time \a time to the output time. Both times are in milliseconds.
    ///
    /// The result is limited to the output range. This range starts at the constructor argument `outputStart` and has
    /// the same length as the input range. The result is never negative.
    int calculateOutputTime(int time) const;

    /// Sets the input time to \a time milliseconds. Writes the output time to the document, unless the document
    /// already contains the same text.
    void setCurrentTime(int time);

    /// Returns the input time that was last set, in milliseconds; initially the start of the input range.
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
