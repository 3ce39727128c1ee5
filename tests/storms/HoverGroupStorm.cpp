// Sends hover events to widgets that belong to one or two hover groups. The model computes which widgets receive each
// event, and in which order. In some steps, the event handlers of the widgets change and destroy groups and widgets.
// The model cannot predict such a step. The sanitizers check it, and the storm then begins again with new objects.

#include <storms/Storm.h>

#include <Util/HoverGroup.h>

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

using Zelkor::Testing::Random;
using Zelkor::Testing::Require;
using Zelkor::Util::HoverGroup;

namespace
{

constexpr std::size_t WidgetCount = 6;
constexpr std::size_t GroupCount = 2;

bool IsHover(QEvent::Type type)
{
    return type == QEvent::Enter || type == QEvent::Leave || type == QEvent::HoverEnter || type == QEvent::HoverLeave;
}

/// Widget that calls a function for each hover event.
class Widget : public QWidget
{
public:
    explicit Widget(std::function<void(Widget*)> onHover)
        : onHover_(std::move(onHover))
    {}

protected:
    bool event(QEvent* event) override
    {
        if (IsHover(event->type())) {
            onHover_(this);
            return true;
        }
        return QWidget::event(event);
    }

private:
    std::function<void(Widget*)> onHover_;
};

/// The expected state of a hover group.
struct ModelGroup
{
    std::map<QWidget*, QEvent::Type> members; // the type of the last hover event of each member
    bool sendsEvent = false;
};

class HoverGroupStorm
{
public:
    explicit HoverGroupStorm(Random& random)
        : random_(random)
    {
        Restart();
    }

    void Step()
    {
        if (random_.OneIn(20)) {
            handlersOperate_ = true;
            SendEvent();
            handlersOperate_ = false;
            Restart();
            return;
        }
        Operate();
    }

    void Finish() {}

private:
    void Restart()
    {
        groups_.clear();
        widgets_.clear();
        models_.assign(GroupCount, {});
        filters_.clear();
        for (std::size_t index = 0; index < GroupCount; ++index) {
            groups_.push_back(std::make_unique<HoverGroup>(nullptr));
        }
        for (std::size_t index = 0; index < WidgetCount; ++index) {
            widgets_.push_back(MakeWidget());
        }
    }

    std::unique_ptr<Widget> MakeWidget()
    {
        return std::make_unique<Widget>([this](Widget* widget) { OnHover(widget); });
    }

    void Operate()
    {
        switch (random_.Below(10)) {
        case 0:
            return ReplaceWidget();
        case 1:
            return ReplaceGroup();
        case 2:
        case 3:
            return Add();
        case 4:
            return Remove();
        default:
            return SendEvent();
        }
    }

    void ReplaceWidget()
    {
        std::unique_ptr<Widget>& widget = random_.Pick(widgets_);
        if (handling_.count(widget.get()) > 0) {
            return; // Qt does not allow a widget to be destroyed in its own event handler
        }
        for (ModelGroup& model : models_) {
            model.members.erase(widget.get());
        }
        filters_.erase(widget.get());
        widget.reset();
        widget = MakeWidget();
    }

    void ReplaceGroup()
    {
        std::size_t const index = random_.Below(GroupCount);
        groups_[index] = std::make_unique<HoverGroup>(nullptr);
        models_[index].members.clear();
        for (auto& [widget, filters] : filters_) {
            filters.erase(std::remove(filters.begin(), filters.end(), index), filters.end());
        }
    }

    void Add()
    {
        std::size_t const index = random_.Below(GroupCount);
        QWidget* const widget = random_.Pick(widgets_).get();
        groups_[index]->addItem(widget);
        models_[index].members[widget] = QEvent::None;
        // Qt calls the most recently installed event filter first.
        std::vector<std::size_t>& filters = filters_[widget];
        filters.erase(std::remove(filters.begin(), filters.end(), index), filters.end());
        filters.insert(filters.begin(), index);
    }

    void Remove()
    {
        std::size_t const index = random_.Below(GroupCount);
        QWidget* const widget = random_.Pick(widgets_).get();
        groups_[index]->removeItem(widget);
        models_[index].members.erase(widget);
    }

    void SendEvent()
    {
        QEvent::Type const types[]{QEvent::Enter, QEvent::Leave, QEvent::HoverEnter, QEvent::HoverLeave};
        QEvent::Type const type = types[random_.Below(4)];
        QWidget* const widget = random_.Pick(widgets_).get();
        if (handlersOperate_) {
            QEvent event(type);
            QCoreApplication::sendEvent(widget, &event);
            return;
        }
        received_.clear();
        expected_.clear();
        PredictEvent(widget, type);
        QEvent event(type);
        QCoreApplication::sendEvent(widget, &event);
        Require(received_ == expected_, "the predicted widgets receive the event");
    }

    void PredictEvent(QWidget* widget, QEvent::Type type)
    {
        for (std::size_t const index : filters_[widget]) {
            ModelGroup& group = models_[index];
            auto const member = group.members.find(widget);
            if (member == group.members.end()) {
                continue;
            }
            member->second = type;
            if (group.sendsEvent) {
                continue;
            }
            group.sendsEvent = true;
            for (auto& [other, last] : group.members) {
                if (other != widget && last != type) {
                    last = type;
                    PredictEvent(other, type);
                }
            }
            group.sendsEvent = false;
        }
        expected_.push_back(widget);
    }

    void OnHover(Widget* widget)
    {
        received_.push_back(widget);
        if (handlersOperate_ && depth_ < 3 && random_.OneIn(2)) {
            ++depth_;
            bool const isOutermost = handling_.insert(widget).second;
            Operate();
            if (isOutermost) {
                handling_.erase(widget);
            }
            --depth_;
        }
    }

    Random& random_;
    std::vector<ModelGroup> models_;
    std::map<QWidget*, std::vector<std::size_t>>
        filters_; // for each widget, the indexes of the groups that filter its events
    std::vector<QWidget*> received_;
    std::vector<QWidget*> expected_;
    bool handlersOperate_ = false;
    int depth_ = 0;
    std::set<QWidget*> handling_; // widgets whose event handlers are running
    std::vector<std::unique_ptr<Widget>> widgets_;
    std::vector<std::unique_ptr<HoverGroup>> groups_;
};

} // namespace

int main(int argc, char** argv)
{
    return Zelkor::Testing::RunStorm<HoverGroupStorm, QApplication>(argc, argv);
}
