#pragma once

/// \file
/// The Connections page: sliders and dials that the user connects by name.

#include "Page.h"

#include <vector>

QT_BEGIN_NAMESPACE
class QAbstractSlider;
class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QPushButton;
class QTableWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class Timeline;

class ConnectionsPage : public Page
{
    Q_OBJECT

public:
    explicit ConnectionsPage(QWidget* parent = nullptr);

    void ShowSample() override;

private:
    struct Registration
    {
        int control;
        bool isEmitter;
        QString id;
        bool isQueued;
    };

    void AddControl(QAbstractSlider* control, QString const& name, QHBoxLayout* row);
    QHBoxLayout* NewControls();
    QHBoxLayout* NewForm();
    void CreateLayout();
    void Connect();
    void Register(Registration const& registration);
    void UnregisterSelected();
    void UpdateButtons();

    std::vector<QAbstractSlider*> controls_;
    std::vector<Registration> registrations_;
    QComboBox* controlBox_;
    QComboBox* sideBox_;
    QComboBox* idBox_;
    QCheckBox* queuedBox_;
    QPushButton* registerButton_;
    QPushButton* unregisterButton_;
    QTableWidget* table_;
    Timeline* timeline_;
};

} // namespace Gallery
} // namespace Zelkor
