// What the fonts dialog's rows cost per candidate as one font's candidates grow: the row
// manager fills each candidate's row (ApplyNodeIDToWidget) and the model finds each row's
// index among its siblings (GetChildIndexFor), as the tree view asks for them. The baseline,
// measured in the same run, is a font with 1,000 candidates; a counter "per_row_over_baseline"
// near 1 at 100,000 candidates means the rows cost linear time in their number.

#include "sdk/IControlView.h"
#include "ui/TreeViewDataModel.h"
#include "ui/VLMFontNodeID.h"
#include "ui/VLMTreeViewWidgetMgr.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

// A row widget with its cells, just enough for the row manager to write texts into.
class Cell : public IControlView, public ITextControlData {
public:
    WidgetID GetWidgetID() const override { return 0; }
    std::string GetName() const override { return {}; }
    void Enable(bool) override {}
    bool IsEnabled() const override { return true; }
    void Show(bool) override {}
    bool IsVisible() const override { return true; }
    void Invalidate() override {}
    void SetTextColor(const RGBColor&) override {}
    void SetBackgroundColor(InterfaceColor) override {}
    ISubject* GetSubject() override { return nullptr; }
    IPMUnknown* QueryAddIn(PMIID) const override { return nullptr; }
    ITextControlData* GetTextControlData() override { return this; }
    void SetString(const PMString& value, bool, bool) override { text = value; }
    PMString GetString() const override { return text; }

private:
    PMString text;
};

class Row : public Cell, public IPanelControlData {
public:
    IPanelControlData* GetPanelControlData() override { return this; }
    int32 Length() const override { return 0; }
    IControlView* GetWidget(int32) const override { return nullptr; }
    IControlView* FindWidget(WidgetID id, int32) const override { return &cells[id]; }

private:
    mutable std::map<WidgetID, Cell> cells;
};

// One font with `candidates` candidates, each in a container of its own (a row that looked
// its candidate up by container would search the list up to its own place).
struct Tree {
    explicit Tree(int candidates) : record(new VLMFontInfo()) {
        font.SetData(record);
        font.SetLevel(2);
        for (int n = 0; n < candidates; ++n) {
            record->font.fontInfo.push_back({std::to_string(n + 1), "face " + std::to_string(n)});
            auto node = std::make_unique<TreeViewDataNode>();
            node->SetData(record);
            node->SetLevel(3);
            node->SetContainerID(record->font.fontInfo.back().first);
            node->SetDescription(record->font.fontInfo.back().second);
            font.AddChild(node.get());
            nodes.push_back(std::move(node));
        }
    }
    Tamrik::SmartPointer<VLMFontInfo> record;
    TreeViewDataNode font;
    std::vector<std::unique_ptr<TreeViewDataNode>> nodes;
};

// Seconds per row of filling and finding every row of `tree`.
double secondsPerRow(const Tree& tree) {
    const VLMTreeViewWidgetMgr rows(nullptr);
    const TreeViewDataModel model(nullptr);
    Row widget;
    const auto started = std::chrono::steady_clock::now();
    for (int32 n = 0; n < tree.font.ChildCount(); ++n) {
        const TreeViewDataNode* node = tree.font.GetNthChild(n);
        rows.ApplyNodeIDToWidget(VLMFontNodeID::Create(node), &widget);
        benchmark::DoNotOptimize(model.GetChildIndexFor(&tree.font, node));
    }
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - started;
    return spent.count() / tree.font.ChildCount();
}

void BM_CandidateRows(benchmark::State& state) {
    const Tree baseline(1000);
    const Tree measured(static_cast<int>(state.range(0)));
    double base = 0, per = 0;
    for (auto _ : state) {
        base = secondsPerRow(baseline);
        per = secondsPerRow(measured);
    }
    state.counters["ns_per_row"] = per * 1e9;
    state.counters["baseline_ns_per_row"] = base * 1e9;
    state.counters["per_row_over_baseline"] = base > 0 ? per / base : 0;
}
BENCHMARK(BM_CandidateRows)->Arg(10000)->Arg(100000)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
