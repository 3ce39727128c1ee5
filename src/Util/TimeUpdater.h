#pragma once

/// \file
/// A running time in a document.

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

/// Writes a running time into a text document: the time of a clip while a film is at another, forward or as what is
/// left. All times are in milliseconds; a text tells a time of day, so it starts again at 24 hours.
///
/// \code
/// auto* const left = new TimeUpdater(0, clipStart, clipEnd, QStringLiteral("mm:ss"), label->document(), true);
/// QObject::connect(player, &Player::positionChanged, left, &TimeUpdater::setCurrentTime);
/// \endcode
///
/// It is owned by its document and used on the document's thread.
class ZQTUTIL_EXPORT TimeUpdater : public QObject
{
    Q_OBJECT
    /// The time it was told last, that of the input.
    Q_PROPERTY(int currentTime READ currentTime WRITE setCurrentTime)

public:
    /// Shows times from \a outputStart on while the input runs from \a inputStart to \a inputEnd, in \a format, as
    /// `QTime::toString()` takes it, in \a document; counting down when \a reverse is true. Nothing is written yet;
    /// without a \a document nothing ever is, and the times are only computed.
    TimeUpdater(int outputStart, int inputStart, int inputEnd, QString const& format, QTextDocument* document,
                bool reverse);

    /// The time shown for the input's \a time: between the output's start and end, and never negative.
    int calculateOutputTime(int time) const;

    /// The input is at \a time. The document is written only when its text changes.
    void setCurrentTime(int time);

    /// The input's time that was set last; its start before that.
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
