#include "host/dialogs/Widget.h"

#include "sdk/HostIdentifiers.h"

#include <algorithm>
#include <deque>

namespace Galley {

Widget::Widget(const WidgetSpec& spec, WidgetServices& services, Widget* parent)
    : services_(services), parent_(parent), kind_(spec.kind), id_(spec.id), name_(spec.name),
      accessibleName_(spec.accessibleName), isDefault_(spec.isDefault), enabled_(spec.enabled),
      text_(spec.text, PMString::kDontTranslateDuringCall) {
    // Texts of a description that are string keys are looked up like any other key.
    if (spec.text.rfind("0x", 0) == 0)
        text_.SetTranslatable(true);
    for (const auto& child : spec.children)
        children_.push_back(std::make_unique<Widget>(child, services, this));
}

Widget::~Widget() {
    // Rows and elements may hold add-ins that point into this widget's data.
    rows_.clear();
    rowWidgets_.clear();
    elements_.clear();
    addIns_.clear();
}

Widget* Widget::findByName(const std::string& name) {
    Widget* found = nullptr;
    forEach([&](Widget& widget) {
        if (!found && widget.name_ == name)
            found = &widget;
    });
    return found;
}

void Widget::forEach(const std::function<void(Widget&)>& visit) {
    visit(*this);
    for (auto& child : children_)
        child->forEach(visit);
}

void Widget::addAddIn(PMIID iid, std::unique_ptr<IPMUnknown> addIn) {
    addIns_.emplace_back(iid, std::move(addIn));
}

IPMUnknown* Widget::QueryAddIn(PMIID iid) const {
    for (const auto& [id, addIn] : addIns_)
        if (id == iid)
            return addIn.get();
    return nullptr;
}

template <typename T>
T* Widget::addInOfType() const {
    for (const auto& [id, addIn] : addIns_)
        if (auto* typed = dynamic_cast<T*>(addIn.get()))
            return typed;
    return nullptr;
}

void Widget::press() {
    if (enabled_)
        subject_.Change(kTrueStateMessage, IID_IBOOLEANCONTROLDATA, nullptr);
}

void Widget::Enable(bool enable) {
    if (enabled_ != enable) {
        enabled_ = enable;
        services_.changed(*this);
    }
}

void Widget::Show(bool show) {
    if (visible_ != show) {
        visible_ = show;
        services_.changed(*this);
    }
}

void Widget::SetTextColor(const RGBColor& color) {
    hasTextColor_ = true;
    textColor_ = color;
    services_.changed(*this);
}

void Widget::SetBackgroundColor(InterfaceColor color) {
    background_ = color;
    services_.changed(*this);
}

ITextControlData* Widget::GetTextControlData() {
    const bool hasText = kind_ == Kind::label || kind_ == Kind::editText || kind_ == Kind::button ||
                         kind_ == Kind::progressBar || kind_ == Kind::panel;
    return hasText ? this : nullptr;
}

IPanelControlData* Widget::GetPanelControlData() {
    return kind_ == Kind::panel ? this : nullptr;
}

IProgressBarControlData* Widget::GetProgressBarControlData() {
    return kind_ == Kind::progressBar ? this : nullptr;
}

ITreeViewMgr* Widget::GetTreeViewMgr() {
    return kind_ == Kind::treeView ? this : nullptr;
}

ITreeViewController* Widget::GetTreeViewController() {
    return kind_ == Kind::treeView ? this : nullptr;
}

IListControlData* Widget::GetListControlData() {
    return kind_ == Kind::listBox ? this : nullptr;
}

IListBoxController* Widget::GetListBoxController() {
    return kind_ == Kind::listBox ? this : nullptr;
}

int32 Widget::Length() const {
    return static_cast<int32>(kind_ == Kind::listBox ? elements_.size() : children_.size());
}

IControlView* Widget::GetWidget(int32 index) const {
    if (index < 0 || index >= static_cast<int32>(children_.size()))
        return nullptr;
    return children_[static_cast<std::size_t>(index)].get();
}

IControlView* Widget::FindWidget(WidgetID id, int32 depth) const {
    // Breadth first, so that the nearest widget with the ID wins.
    std::deque<std::pair<const Widget*, int32>> queue{{this, 0}};
    while (!queue.empty()) {
        auto [widget, level] = queue.front();
        queue.pop_front();
        if (level >= depth)
            continue;
        for (const auto& child : widget->children_) {
            if (child->id_ == id)
                return child.get();
            queue.emplace_back(child.get(), level + 1);
        }
    }
    return nullptr;
}

void Widget::SetString(const PMString& text, bool invalidate, bool notify) {
    text_ = text;
    if (invalidate)
        services_.changed(*this);
    if (notify)
        subject_.Change(kTextChangeStateMessage, IID_ITEXTCONTROLDATA, nullptr);
}

void Widget::SetRange(int16 minimum, int16 maximum, bool invalidate, bool) {
    minimum_ = minimum;
    maximum_ = maximum;
    if (invalidate)
        services_.changed(*this);
}

void Widget::SetValue(int16 value, bool invalidate, bool) {
    value_ = value;
    if (invalidate)
        services_.changed(*this);
}

void Widget::ClearTree(bool invalidate) {
    rows_.clear();
    rowWidgets_.clear();
    selection_.clear();
    if (invalidate)
        services_.changed(*this);
}

void Widget::ChangeRoot(bool invalidate) {
    rows_.clear();
    rowWidgets_.clear();
    auto* adapter = addInOfType<ITreeViewHierarchyAdapter>();
    auto* widgets = addInOfType<ITreeViewWidgetMgr>();
    if (adapter && widgets) {
        services_.callPlugin("the tree view's rows", [&] {
            const NodeID root = adapter->GetRootNode();
            if (!root.IsValid())
                return;
            if (adapter->ShouldShowRootNode()) {
                rows_.push_back({root, 0, nullptr});
                addRows(*adapter, *widgets, root, 1);
            } else {
                addRows(*adapter, *widgets, root, 0);
            }
        });
    }
    // A selected row that is gone is no longer selected.
    std::erase_if(selection_, [&](const NodeID& node) {
        return std::none_of(rows_.begin(), rows_.end(),
                            [&](const Row& row) { return row.node == node; });
    });
    if (invalidate)
        services_.changed(*this);
}

void Widget::addRows(ITreeViewHierarchyAdapter& adapter, ITreeViewWidgetMgr& widgets,
                     const NodeID& parent, int level) {
    const int32 count = adapter.GetNumChildren(parent);
    for (int32 n = 0; n < count; ++n) {
        NodeID child = adapter.GetNthChild(parent, n);
        if (!child.IsValid())
            continue;
        auto* rowWidget = dynamic_cast<Widget*>(widgets.CreateWidgetForNode(child));
        if (rowWidget)
            widgets.ApplyNodeIDToWidget(child, rowWidget, 0);
        rows_.push_back({child, level, rowWidget});
        addRows(adapter, widgets, child, level + 1);
    }
}

void Widget::NodeChanged(const NodeID& node) {
    auto* widgets = addInOfType<ITreeViewWidgetMgr>();
    for (auto& row : rows_)
        if (row.node == node && row.widget && widgets)
            services_.callPlugin("a tree row",
                                 [&] { widgets->ApplyNodeIDToWidget(row.node, row.widget, 0); });
    services_.changed(*this);
}

IControlView* Widget::makeRowWidget(const RsrcSpec& spec) {
    std::unique_ptr<Widget> row = services_.createFromResource(spec);
    if (!row)
        return nullptr;
    row->parent_ = this;
    rowWidgets_.push_back(std::move(row));
    return rowWidgets_.back().get();
}

void Widget::announceSelection() {
    services_.changed(*this);
    subject_.Change(kListSelectionChangedMessage, IID_ILISTCONTROLDATA, nullptr);
}

void Widget::Select(const NodeID& node, bool addToSelection, bool notify) {
    if (!addToSelection)
        selection_.clear();
    if (std::find(selection_.begin(), selection_.end(), node) == selection_.end())
        selection_.push_back(node);
    if (notify)
        announceSelection();
}

void Widget::Deselect(const NodeID& node, bool notify) {
    std::erase_if(selection_, [&](const NodeID& selected) { return selected == node; });
    if (notify)
        announceSelection();
}

void Widget::DeselectAll(bool notify) {
    selection_.clear();
    selected_.clear();
    if (notify)
        announceSelection();
}

IControlView* Widget::AddListElementWidget(const RsrcSpec& element, int32 position) {
    std::unique_ptr<Widget> made = services_.createFromResource(element);
    if (!made)
        return nullptr;
    made->parent_ = this;
    const auto at = std::clamp<std::size_t>(static_cast<std::size_t>(std::max(position, 0)), 0,
                                            elements_.size());
    auto inserted =
        elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(at), std::move(made));
    services_.changed(*this);
    return inserted->get();
}

void Widget::RemoveAll() {
    elements_.clear();
    selected_.clear();
    services_.changed(*this);
}

IControlView* Widget::GetElement(int32 position) const {
    if (position < 0 || position >= static_cast<int32>(elements_.size()))
        return nullptr;
    return elements_[static_cast<std::size_t>(position)].get();
}

void Widget::GetSelected(K2Vector<int32>& positions) const {
    positions = selected_;
    std::sort(positions.begin(), positions.end());
}

void Widget::Select(int32 position, bool notify) {
    if (position < 0 || position >= static_cast<int32>(elements_.size()))
        return;
    selected_.assign(1, position);
    if (notify)
        announceSelection();
}

void Widget::doubleClickElement(int32 position) {
    Select(position, true);
    Widget* element = static_cast<Widget*>(GetElement(position));
    if (!element)
        return;
    // The handler is on the element itself or on one of its widgets.
    element->forEach([&](Widget& part) {
        auto* handler = dynamic_cast<IEventHandler*>(part.QueryAddIn(IID_IEVENTHANDLER));
        if (!handler)
            return;
        struct DoubleClick : IEvent {
            IControlView* target;
            IControlView* GetTarget() const override { return target; }
        } event;
        event.target = element;
        services_.callPlugin("a double-click", [&] { handler->ButtonDblClk(&event); });
    });
}

} // namespace Galley
