#pragma once

/// \file
/// The Style page: demonstrates styles for message levels, rounded pop-ups and palette colours.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QComboBox;
class QGroupBox;
class QLabel;
class QMenu;
class QToolButton;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{
class StyledPalette;
}
namespace Gallery
{

class StylePage : public Page
{
    Q_OBJECT

public:
    explicit StylePage(QWidget* parent = nullptr);

    void ShowSample() override;
    std::vector<SampleDialog> SampleDialogs() override;

private:
    QGroupBox* NewMessages();
    QGroupBox* NewPopUps();
    QGroupBox* NewColours();
    QToolButton* NewColourButton(char const* property, QString const& title);

    QComboBox* levelBox_;
    QLabel* message_;
    QMenu* menu_;
    Util::StyledPalette* palette_;
};

} // namespace Gallery
} // namespace Zelkor
