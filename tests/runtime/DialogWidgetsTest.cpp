#include "RuntimeFixture.h"

#include "host/batch/BatchScript.h"
#include "host/dialogs/DialogText.h"
#include "host/dialogs/UiDescription.h"
#include "sdk/IPMStream.h"

namespace RuntimeTest {

// Rows of a small tree: node n has the children listed for it; node 0 is the root.
class NumberNode : public NodeIDClass {
public:
    explicit NumberNode(int n) : n_(n) {}
    int number() const { return n_; }
    int32 GetNodeType() const override { return 1; }
    int32 Compare(const NodeIDClass* other) const override {
        return n_ - static_cast<const NumberNode*>(other)->n_;
    }
    NodeIDClass* Clone() const override { return new NumberNode(n_); }
    void Read(IPMStream*) override {}
    void Write(IPMStream*) const override {}
    PMString GetDescription() const override { return PMString(std::to_string(n_)); }

private:
    int n_;
};

const std::map<int, std::vector<int>> treeShape = {
    {0, {1, 4}}, {1, {2, 3}}, {4, {}}, {2, {}}, {3, {}}};

int numberOf(const NodeID& node) {
    return static_cast<const NumberNode*>(node.Get())->number();
}

struct Adapter : ITreeViewHierarchyAdapter {
    NodeID GetRootNode() const override { return new NumberNode(0); }
    NodeID GetParentNode(const NodeID&) const override { return {}; }
    int32 GetNumChildren(const NodeID& node) const override {
        return static_cast<int32>(treeShape.at(numberOf(node)).size());
    }
    NodeID GetNthChild(const NodeID& node, const int32& nth) const override {
        return new NumberNode(treeShape.at(numberOf(node))[static_cast<std::size_t>(nth)]);
    }
    int32 GetChildIndex(const NodeID&, const NodeID&) const override { return -1; }
    NodeID GetGenericNodeID() const override { return new NumberNode(-1); }
};

struct Rows : CTreeViewWidgetMgr {
    using CTreeViewWidgetMgr::CTreeViewWidgetMgr;
    IControlView* CreateWidgetForNode(const NodeID&) const override {
        return CreateRowWidget(
            RsrcSpec(PMLocaleId{}, kTestPluginPrefix, kViewRsrcType, kTestRowRsrc));
    }
    WidgetID GetWidgetTypeForNode(const NodeID&) const override { return 0; }
    bool ApplyNodeIDToWidget(const NodeID& node, IControlView* row, int32) const override {
        row->GetPanelControlData()->FindWidget(0x7E5721)->GetTextControlData()->SetString(
            PMString("font " + std::to_string(numberOf(node)), PMString::kDontTranslateDuringCall));
        return true;
    }
    double GetIndentForNode(const NodeID&) const override { return 0; }
};

struct DoubleClicks : IPMUnknown, IEventHandler {
    int* count;
    explicit DoubleClicks(int* counter) : count(counter) {}
    bool ButtonDblClk(IEvent* event) override {
        ++*count;
        return event->GetTarget() == nullptr;
    }
};

class Dialogs : public RuntimeFixture {
protected:
    void SetUp() override {
        RuntimeFixture::SetUp();
        dialog = openTestDialog();
        ASSERT_NE(dialog, nullptr);
        tree = dialog->root().findByName("tree");
        list = dialog->root().findByName("list");
    }
    Galley::Dialog* dialog = nullptr;
    Galley::Widget* tree = nullptr;
    Galley::Widget* list = nullptr;
};

TEST_F(Dialogs, TreeRowsComeFromTheAdapterAndSelectionKeepsItsOrder) {
    tree->addAddIn(IID_ITREEVIEWHIERARCHYADAPTER, std::make_unique<Adapter>());
    tree->addAddIn(IID_ITREEVIEWWIDGETMGR, std::make_unique<Rows>(tree));
    tree->ChangeRoot();
    std::vector<std::pair<int, int>> shown; // node, level
    for (const auto& row : tree->rows())
        shown.emplace_back(numberOf(row.node), row.level);
    EXPECT_EQ(shown, (std::vector<std::pair<int, int>>{{1, 0}, {2, 1}, {3, 1}, {4, 0}}));

    int announced = 0;
    struct Counter : IObserver {
        int* n;
        explicit Counter(int* counter) : n(counter) {}
        void Update(ClassID change, ISubject*, PMIID, void*) override {
            *n += change == kListSelectionChangedMessage;
        }
    } counter(&announced);
    tree->GetSubject()->AttachObserver(&counter, IID_ILISTCONTROLDATA);
    tree->Select(new NumberNode(3));
    tree->Select(new NumberNode(1));
    NodeIDList selected;
    tree->GetSelectedItems(selected);
    ASSERT_EQ(selected.size(), 2u);
    EXPECT_EQ(numberOf(selected[0]), 3);
    EXPECT_EQ(numberOf(selected[1]), 1);
    EXPECT_EQ(announced, 2);

    EXPECT_EQ(Galley::renderTree(*tree),
              (std::vector<std::string>{"  Name      State", "* font 1", "    font 2", "*   font 3",
                                        "  font 4"}));
    // On a terminal of 14 columns the widest column gives way, its texts cut with "…".
    EXPECT_EQ(Galley::renderTree(*tree, 14),
              (std::vector<std::string>{"  Name   State", "* font\u2026", "    fo\u2026",
                                        "*   fo\u2026", "  font\u2026"}));
    tree->ClearTree();
    EXPECT_EQ(tree->RowCount(), 0);
    selected.clear();
    tree->GetSelectedItems(selected);
    EXPECT_TRUE(selected.empty()) << "dropped rows take their selection with them";
    tree->GetSubject()->DetachObserver(&counter, IID_ILISTCONTROLDATA);
}

TEST_F(Dialogs, ListElementsComeFromTheirResourceAndDoubleClickSelectsAndTells) {
    const RsrcSpec element(PMLocaleId{}, kTestPluginPrefix, kViewRsrcType, kTestRowRsrc);
    int clicks = 0;
    for (const std::string name : {"Beta", "Alpha", "Gamma"}) {
        const int32 position = name == "Alpha" ? 0 : list->Length();
        IControlView* made = list->AddListElementWidget(element, position);
        ASSERT_NE(made, nullptr);
        made->GetPanelControlData()->FindWidget(0x7E5721)->GetTextControlData()->SetString(
            PMString(name, PMString::kDontTranslateDuringCall));
        static_cast<Galley::Widget*>(made)->addAddIn(IID_IEVENTHANDLER,
                                                     std::make_unique<DoubleClicks>(&clicks));
    }
    EXPECT_EQ(list->AddListElementWidget(
                  RsrcSpec(PMLocaleId{}, kTestPluginPrefix, kViewRsrcType, 999), 0),
              nullptr);
    list->doubleClickElement(2);
    K2Vector<int32> selected;
    list->GetSelected(selected);
    EXPECT_EQ(selected, K2Vector<int32>{2});
    EXPECT_EQ(clicks, 1);
    const auto lines = Galley::renderDialog(*dialog);
    const std::vector<std::string> entries(lines.begin() + 4, lines.begin() + 7);
    EXPECT_EQ(entries, (std::vector<std::string>{"  Alpha", "  Beta", "* Gamma"}));
}

TEST_F(Dialogs, HeadlessRenderingShowsEveryWidgetKind) {
    dialog->root().findByName("probeButton")->Disable();
    const auto lines = Galley::renderDialog(*dialog);
    // Title through the string table; the label's key has no text and shows as the key.
    EXPECT_EQ(lines, (std::vector<std::string>{"== Test dialog ==", "0x7e5700kLabelKey",
                                               "[#######.......................]", "  (no rows)",
                                               "(Probe) [OK]"}));
}

TEST(UiDescription, BadDescriptionsNameTheFileTheLineAndTheFault) {
    const auto ui = [](const std::string& widgets) {
        return "<ui version=\"4.0\"><widget class=\"QDialog\" name=\"d\"><property "
               "name=\"widgetID\">"
               "<string>0x10</string></property>" +
               widgets + "</widget></ui>";
    };
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"<ui><widget", "not well-formed XML"},
        {"<form/>", "no <ui> root"},
        {ui("<widget class=\"QCalendarWidget\" name=\"when\"/>"),
         "class \"QCalendarWidget\", which Galley's dialogs do not know"},
        {ui("<widget class=\"QPushButton\" name=\"go\"/>"),
         "widget \"go\" (QPushButton) has no widgetID"},
        {ui("<widget class=\"QLabel\" name=\"x\"><property "
            "name=\"widgetID\"><string>twelve</string></property></widget>"),
         "widgetID \"twelve\", which is not a number"},
        {"<ui><widget class=\"QDialog\" name=\"bare\"/></ui>",
         "widget \"bare\" (QDialog) has no widgetID"},
    };
    for (const auto& [xml, fault] : cases) {
        try {
            Galley::parseUiDescription(xml, "res/dialog.ui");
            ADD_FAILURE() << "accepted: " << xml;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("dialog description res/dialog.ui"),
                      std::string::npos)
                << error.what();
            EXPECT_NE(std::string(error.what()).find(fault), std::string::npos) << error.what();
        }
    }
    // Labels and panels may go without an identifier; layouts and spacers are looked through.
    const auto spec = Galley::parseUiDescription(
        ui("<layout class=\"QVBoxLayout\"><item><widget class=\"QLabel\" "
           "name=\"l\"/></item><item><spacer/></item></layout>"),
        "ok.ui");
    ASSERT_EQ(spec.children.size(), 1u);
    EXPECT_EQ(spec.children[0].kind, Galley::WidgetSpec::Kind::label);
}

TEST(BatchScript, ActionsReadAsWordsAndBadOnesSayWhatIsExpected) {
    const auto actions =
        Galley::parseBatchActions({"select", "Font-Bold/2", "press", "Activate", "pick",
                                   "DejaVu Sans", "wait", "save-as", "out.idml"});
    std::vector<std::string> described;
    for (const auto& action : actions)
        described.push_back(action.describe());
    EXPECT_EQ(described,
              (std::vector<std::string>{"select Font-Bold/2", "press Activate", "pick DejaVu Sans",
                                        "wait", "save-as out.idml"}));
    const std::vector<std::pair<std::vector<std::string>, std::string>> bad = {
        {{"click", "OK"}, "unknown action \"click\""},
        {{"press"}, "action \"press\" needs an argument"},
        {{"save-as", ""}, "action \"save-as\" needs an argument"},
    };
    for (const auto& [words, message] : bad) {
        try {
            Galley::parseBatchActions(words);
            ADD_FAILURE() << message;
        } catch (const std::invalid_argument& error) {
            EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
        }
    }
}

TEST(NodeIdentity, CopiesCloneAndCompareByTheirNode) {
    NodeID a(new NumberNode(7));
    NodeID b = a;
    EXPECT_NE(a.Get(), b.Get());
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a == NodeID(new NumberNode(8)));
    EXPECT_FALSE(a == NodeID());
    MemoryStream stream;
    PMString("blub").ReadWrite(&stream);
    PMString("two words").ReadWrite(&stream);
    stream.rewindForReading();
    PMString first, second, past;
    first.ReadWrite(&stream);
    second.ReadWrite(&stream);
    past.ReadWrite(&stream);
    EXPECT_EQ(first.GetUTF8String(), "blub");
    EXPECT_EQ(second.GetUTF8String(), "two words");
    EXPECT_TRUE(past.IsEmpty());
}

} // namespace RuntimeTest
