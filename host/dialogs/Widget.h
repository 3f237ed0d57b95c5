#pragma once

#include "host/dialogs/UiDescription.h"
#include "host/base/Subject.h"
#include "sdk/IControlView.h"
#include "sdk/IListBox.h"
#include "sdk/ITreeView.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Galley {

class Widget;

// What widgets need from the dialog machinery around them.
class WidgetServices {
public:
    virtual ~WidgetServices() = default;
    // A widget made from a plug-in's widget resource (a tree row, a list element), with its
    // add-ins; null when the resource cannot be had.
    virtual std::unique_ptr<Widget> createFromResource(const RsrcSpec& spec) = 0;
    // The text a user sees for a string (translated through the string tables).
    virtual std::string displayText(const PMString& text) const = 0;
    // Something about `widget` changed that a view of it shows.
    virtual void changed(Widget& widget) = 0;
    // Runs plug-in code behind the host's guard.
    virtual void callPlugin(const std::string& what, const std::function<void()>& call) = 0;
};

// A widget of Galley's dialogs, made from a description. It serves the SDK's data
// interfaces that fit its kind; the same object is used by the headless dialogs and, as the
// model behind real widgets, by the GUI.
class Widget : public IControlView,
               public IPanelControlData,
               public ITextControlData,
               public IProgressBarControlData,
               public ITreeViewMgr,
               public ITreeViewController,
               public IListControlData,
               public IListBoxController {
public:
    using Kind = WidgetSpec::Kind;

    // Builds the widget and its children from `spec`.
    Widget(const WidgetSpec& spec, WidgetServices& services, Widget* parent = nullptr);
    ~Widget() override;

    Kind kind() const { return kind_; }
    Widget* parent() const { return parent_; }
    const std::vector<std::unique_ptr<Widget>>& children() const { return children_; }
    bool isDefaultButton() const { return isDefault_; }
    const std::string& accessibleName() const { return accessibleName_; }
    const RGBColor* textColor() const { return hasTextColor_ ? &textColor_ : nullptr; }
    InterfaceColor backgroundColor() const { return background_; }
    // Every widget of this subtree with that name (depth first); null when none.
    Widget* findByName(const std::string& name);
    // This subtree's widgets, depth first.
    void forEach(const std::function<void(Widget&)>& visit);

    // Add-ins the host made on this widget.
    void addAddIn(PMIID iid, std::unique_ptr<IPMUnknown> addIn);
    const std::vector<std::pair<PMIID, std::unique_ptr<IPMUnknown>>>& addIns() const {
        return addIns_;
    }

    // A press of a button: its observers hear kTrueStateMessage on IID_IBOOLEANCONTROLDATA.
    void press();

    // IControlView
    WidgetID GetWidgetID() const override { return id_; }
    std::string GetName() const override { return name_; }
    void Enable(bool enable = true) override;
    bool IsEnabled() const override { return enabled_; }
    void Show(bool show = true) override;
    bool IsVisible() const override { return visible_; }
    void Invalidate() override { services_.changed(*this); }
    void SetTextColor(const RGBColor& color) override;
    void SetBackgroundColor(InterfaceColor color) override;
    ISubject* GetSubject() override { return &subject_; }
    IPMUnknown* QueryAddIn(PMIID iid) const override;
    ITextControlData* GetTextControlData() override;
    IPanelControlData* GetPanelControlData() override;
    IProgressBarControlData* GetProgressBarControlData() override;
    ITreeViewMgr* GetTreeViewMgr() override;
    ITreeViewController* GetTreeViewController() override;
    IListControlData* GetListControlData() override;
    IListBoxController* GetListBoxController() override;

    // IPanelControlData and IListControlData: the children of a panel, the elements of a
    // list box.
    int32 Length() const override;
    IControlView* GetWidget(int32 index) const override;
    IControlView* FindWidget(WidgetID id, int32 depth = 1) const override;

    // ITextControlData
    void SetString(const PMString& text, bool invalidate = true, bool notify = true) override;
    PMString GetString() const override { return text_; }
    // What a user sees: the text, translated when it is a key.
    std::string displayText() const { return services_.displayText(text_); }

    // IProgressBarControlData
    void SetRange(int16 minimum, int16 maximum, bool invalidate = true,
                  bool notify = true) override;
    void SetValue(int16 value, bool invalidate = true, bool notify = true) override;
    int16 GetMinimum() const override { return minimum_; }
    int16 GetMaximum() const override { return maximum_; }
    int16 GetValue() const override { return value_; }

    // The rows of a tree view, in display order.
    struct Row {
        NodeID node;
        int level = 0; // 0 for the top rows
        Widget* widget = nullptr;
    };
    const std::vector<Row>& rows() const { return rows_; }

    // ITreeViewMgr
    void ClearTree(bool invalidate = true) override;
    void ChangeRoot(bool invalidate = true) override;
    void NodeChanged(const NodeID& node) override;
    int32 RowCount() const override { return static_cast<int32>(rows_.size()); }

    // ITreeViewController
    void GetSelectedItems(NodeIDList& items) const override { items = selection_; }
    void Select(const NodeID& node, bool addToSelection = true, bool notify = true) override;
    void Deselect(const NodeID& node, bool notify = true) override;
    // Also the list box's (a widget is either a tree or a list).
    void DeselectAll(bool notify = true) override;

    // IListControlData
    IControlView* AddListElementWidget(const RsrcSpec& element, int32 position) override;
    void RemoveAll() override;
    IControlView* GetElement(int32 position) const override;
    // IListBoxController
    void GetSelected(K2Vector<int32>& positions) const override;
    void Select(int32 position, bool notify = true) override;
    // A double-click on an element: it is selected, then its event handler is told.
    void doubleClickElement(int32 position);

    // A row widget for this tree made from a widget resource, owned by the tree until its
    // rows are dropped; null when the resource cannot be had.
    IControlView* makeRowWidget(const RsrcSpec& row);

private:
    void announceSelection();
    void addRows(ITreeViewHierarchyAdapter& adapter, ITreeViewWidgetMgr& widgets,
                 const NodeID& parent, int level);
    template <typename T>
    T* addInOfType() const;

    WidgetServices& services_;
    Widget* parent_;
    Kind kind_;
    WidgetID id_;
    std::string name_;
    std::string accessibleName_;
    bool isDefault_;
    bool enabled_;
    bool visible_ = true;
    bool hasTextColor_ = false;
    RGBColor textColor_;
    InterfaceColor background_ = InterfaceColor::none;
    PMString text_;
    Subject subject_;
    std::vector<std::unique_ptr<Widget>> children_;
    std::vector<std::pair<PMIID, std::unique_ptr<IPMUnknown>>> addIns_;

    int16 minimum_ = 0, maximum_ = 100, value_ = 0;

    std::vector<Row> rows_;
    std::vector<std::unique_ptr<Widget>> rowWidgets_;
    NodeIDList selection_;

    std::vector<std::unique_ptr<Widget>> elements_;
    std::vector<int32> selected_;
};

} // namespace Galley
