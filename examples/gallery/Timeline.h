#pragma once

/// \file
/// What happened, in its order.

#include "Tone.h"

#include <QtWidgets/QTableWidget>

namespace Zelkor
{
namespace Gallery
{

/// A table of events, the newest last and in sight. Events that happened within one call of the event loop share a
/// number.
class Timeline : public QTableWidget
{
    Q_OBJECT

public:
    explicit Timeline(QWidget* parent = nullptr);

    /// Appends that \a what happened to \a who.
    void Add(QString const& who, QString const& what, Tone tone = Tone::Neutral);

    /// Forgets everything.
    void Clear();

private:
    void EndTurn();

    int turn_ = 0;
    bool isInTurn_ = false;
};

} // namespace Gallery
} // namespace Zelkor
