#pragma once

/// \file
/// The Input dialog page: opens a dialog that validates a name while the user types it.

#include "Page.h"

#include <Util/ValidationInputDialog.h>

QT_BEGIN_NAMESPACE
class QListWidget;
class QPushButton;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class InputDialogPage : public Page
{
    Q_OBJECT

public:
    explicit InputDialogPage(QWidget* parent = nullptr);

    void ShowSample() override;
    std::vector<SampleDialog> SampleDialogs() override;

private:
    std::unique_ptr<Util::ValidationInputDialog> NewDialog(QString const& text);
    bool IsTaken(QString const& name) const;
    void AddFilm();

    QListWidget* films_;
    QPushButton* addButton_;
    StatusLabel* outcomeLabel_;
};

} // namespace Gallery
} // namespace Zelkor
