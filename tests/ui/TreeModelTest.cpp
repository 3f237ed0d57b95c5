#include "FontsDialogFixture.h"

#include "sdk/IPMStream.h"
#include "ui/TreeViewDataModel.h"
#include "ui/VLMFontNodeID.h"

namespace UiTest {
namespace {

class TreeModel : public FontsDialogTest {
protected:
    // Opens the fonts dialog over `fonts` and answers the model on its tree.
    TreeViewDataModel& modelOver(const VLMFontList& fonts) {
        suite->documentFonts = fonts;
        Galley::Dialog& dialog = open(kVellumineDialogRsrcID);
        tree = &widget(dialog, kFontTreeWidgetID);
        return *dynamic_cast<TreeViewDataModel*>(tree->QueryAddIn(IID_ITREEVIEWDATAMODEL));
    }
    Galley::Widget* tree = nullptr;
};

TEST_F(TreeModel, FontAndFirstMatchShareASequenceNumberAndOnlySuppliableFontsGetMatches) {
    const Shape suppliable{2, true};
    // Y's matches are ignored: the font manager cannot supply its type.
    TreeViewDataModel& model = modelOver({record("X", suppliable, {"11", "12"}), record("Y", {}, {"13"})});
    const TreeViewDataNode* root = model.GetRootNode();
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->ChildCount(), 2);
    const TreeViewDataNode* x = root->GetNthChild(0);
    const TreeViewDataNode* y = root->GetNthChild(1);
    struct Expected { const TreeViewDataNode* node; int32 level, sequence; std::string container; };
    for (const auto& [node, level, sequence, container] :
         {Expected{root, 1, 0, ""}, Expected{x, 2, 1, "-1"}, Expected{x->GetNthChild(0), 3, 1, "11"},
          Expected{x->GetNthChild(1), 3, 2, "12"}, Expected{y, 2, 4, "-1"}}) {
        EXPECT_EQ(node->GetLevel(), level) << container;
        EXPECT_EQ(node->GetSequenceNumber(), sequence) << container;
        EXPECT_EQ(node->GetContainerID(), container);
    }
    EXPECT_EQ(y->ChildCount(), 0);
    EXPECT_EQ(x->GetNthChild(0)->GetData(), x->GetData()); // a match row acts for its font
    EXPECT_EQ(tree->RowCount(), 4);

    // Neutral answers for null nodes; a grandchild is not a child of the root.
    EXPECT_EQ(model.GetParentNode(nullptr), nullptr);
    EXPECT_EQ(model.GetChildCount(nullptr), 0);
    EXPECT_EQ(model.GetNthChildNode(nullptr, 0), nullptr);
    EXPECT_EQ(model.GetChildIndexFor(nullptr, x), -1);
    EXPECT_EQ(model.GetChildIndexFor(root, x->GetNthChild(1)), -1);
    EXPECT_EQ(model.GetChildIndexFor(root, y), 1);
}

// A font with many candidates: each row shows its own face, also among candidates that
// share a container (the faces the system has all carry none), and finds its index among
// its siblings without a search.
TEST_F(TreeModel, EveryCandidateRowShowsItsOwnFaceAmongMany) {
    const int candidates = 2000;
    auto font = record("M", {candidates, true});
    for (int n = 0; n < candidates; ++n)
        font->font.fontInfo.push_back({n % 2 ? std::to_string(n) : "", "face " + std::to_string(n)});
    TreeViewDataModel& model = modelOver({font});
    ASSERT_EQ(tree->RowCount(), candidates + 1);
    const TreeViewDataNode* fontNode = model.GetRootNode()->GetNthChild(0);
    for (int n = 0; n < candidates; ++n) {
        const auto& row = tree->rows().at(static_cast<std::size_t>(n + 1));
        const auto* name = static_cast<Galley::Widget*>(row.widget->FindWidget(kRowNameWidgetID, 9));
        ASSERT_EQ(name->displayText(), "face " + std::to_string(n));
        ASSERT_EQ(model.GetChildIndexFor(fontNode, fontNode->GetNthChild(n)), n);
    }
}

TEST_F(TreeModel, NeedRebuildLooksOnlyFromTheLongerListForSyncIDAndReplacedState) {
    TreeViewDataModel withoutTreeView(nullptr);
    withoutTreeView.Rebuild();
    EXPECT_EQ(withoutTreeView.GetRootNode(), nullptr);
    EXPECT_TRUE(withoutTreeView.NeedRebuild()); // no tree yet

    TreeViewDataModel& model = modelOver({record("A", {}), record("B", {})});
    const Shape replaced{0, false, false, false, true};
    struct Case { const char* what; VLMFontList fresh; bool rebuild; };
    const Case cases[] = {
        {"same fonts, new records", {record("A", {}), record("B", {})}, false},
        {"other order", {record("B", {}), record("A", {})}, false},
        {"other counts", {record("A", {3, true}), record("B", {})}, false},
        {"one replaced", {record("A", replaced), record("B", {})}, true},
        {"one more", {record("A", {}), record("B", {}), record("C", {})}, true},
        {"one fewer", {record("A", {})}, true},
        {"none left", {}, true},
        // Same length: only the fresh list is looked up, and both of its A's find the shown A.
        {"B became a second A", {record("A", {}), record("A", {})}, false},
    };
    for (const auto& [what, fresh, rebuild] : cases) {
        suite->documentFonts = fresh;
        EXPECT_EQ(model.NeedRebuild(), rebuild) << what;
    }
}

TEST_F(TreeModel, AnEmptyDocumentGivesABareRootAndARebuildReleasesTheOldTreesRecords) {
    auto gone = record("Gone", {2, true}, {"5", "6"});
    TreeViewDataModel& model = modelOver({gone});
    const int32 heldByTree = gone->getRefCount();
    suite->documentFonts.clear();
    EXPECT_TRUE(model.NeedRebuild());
    tree->ClearTree(true);
    model.Rebuild();
    EXPECT_EQ(model.GetRootNode()->ChildCount(), 0);
    EXPECT_FALSE(model.NeedRebuild());
    EXPECT_EQ(heldByTree, 5); // this test, the suite, the font node and its two matches
    EXPECT_EQ(gone->getRefCount(), 1);
}

TEST(FontNodeID, CompareOrdersHigherLevelsFirstThenSequenceThenNames) {
    TreeViewDataNode font1, font4, match1, font1A, font1Bold;
    for (auto [node, level, sequence, host, style] :
         {std::tuple{&font1, 2, 1, "B", "Regular"}, std::tuple{&font4, 2, 4, "B", "Regular"},
          std::tuple{&match1, 3, 1, "B", "Regular"}, std::tuple{&font1A, 2, 1, "A", "Regular"},
          std::tuple{&font1Bold, 2, 1, "B", "Bold"}}) {
        node->SetLevel(level);
        node->SetSequenceNumber(sequence);
        node->SetData(record(host, {}));
        node->GetData()->font.styleName = style;
    }
    struct Case { const TreeViewDataNode* self; const TreeViewDataNode* other; int32 expected; };
    for (const auto& [self, other, expected] :
         {Case{&font1, &match1, 1}, Case{&match1, &font1, -1}, Case{&font1, &font4, -1}, Case{&font4, &font1, 1},
          Case{&font1, &font1A, 1}, Case{&font1, &font1Bold, 1}, Case{&font1, &font1, 0}, Case{nullptr, &font1, 0}}) {
        const NodeID a = VLMFontNodeID::Create(self);
        const NodeID b = VLMFontNodeID::Create(other);
        const int32 result = a.Get()->Compare(b.Get());
        EXPECT_EQ((result > 0) - (result < 0), expected) << self << " " << other;
    }
    EXPECT_EQ(VLMFontNodeID::Create(&font1).Get()->Compare(nullptr), 0);
    EXPECT_EQ(VLMFontNodeID::Create().Get()->GetNodeType(), 0x11F30D);
}

TEST(FontNodeID, AStreamCarriesOnlyAPlaceholderAndReadingKeepsTheNode) {
    TreeViewDataNode written, kept;
    MemoryStream stream;
    VLMFontNodeID::Create(&written).Get()->Write(&stream);
    VLMFontNodeID::Create(&kept).Get()->Write(&stream);
    stream.rewindForReading();
    std::string text;
    stream.XferString(text);
    EXPECT_EQ(text, "blub");
    NodeID reader = VLMFontNodeID::Create(&kept);
    const_cast<NodeIDClass*>(reader.Get())->Read(&stream); // takes the second placeholder
    EXPECT_EQ(VLMFontNodeID::NodeOf(reader), &kept);
    stream.XferString(text);
    EXPECT_EQ(text, "");
}

} // namespace
} // namespace UiTest
