#pragma once

#include "host/dialogs/DialogHost.h"
#include "host/dialogs/Widget.h"
#include "sdk/IControlView.h"
#include "sdk/IDialog.h"

#include <memory>
#include <string>

namespace Galley {

// A dialog of Galley: widgets from the plug-in's description, the plug-in's controller and
// observer, its add-ins and its two result slots.
class Dialog : public IDialog, public WidgetServices {
public:
    // Throws std::runtime_error when the resource or its description cannot be had.
    Dialog(DialogHost& host, const RsrcSpec& spec, DialogType mode);
    ~Dialog() override;

    Widget& root() { return *root_; }
    const RsrcSpec& spec() const { return spec_; }
    // The description the dialog was made from (the GUI loads the same file).
    const std::string& descriptionFile() const { return file_; }
    const std::string& title() const { return title_; }
    bool closesByItself() const { return closesByItself_; }
    bool wasCancelled() const { return cancelled_; }
    bool isWaitedFor() const { return waiting_ > 0; }
    // Presses the button (OK and Cancel then close the dialog, once their observers have
    // been told). False when the button is disabled or gone.
    bool pressButton(Widget& button);
    // Closes the dialog as its Cancel button would (time-outs, an unattended run).
    void cancel();

    // IDialog
    void Open(IDialog* parent = nullptr) override;
    void Close(int32 reason = 0) override;
    bool IsOpen() const override { return open_; }
    void WaitForDialog(bool allowIdleTasks) override;
    void SetClosesByItself(bool byItself) override { closesByItself_ = byItself; }
    IPanelControlData* GetDialogPanel() override { return root_.get(); }
    IDialogController* GetController() override;
    IObserver* GetObserver() override;
    void PressDefaultButton() override;
    IStringData* GetStringData() override { return &stringData_; }
    IIntData* GetIntData() override { return &intData_; }
    IPMUnknown* QueryAddIn(PMIID iid) const override;

    // WidgetServices
    std::unique_ptr<Widget> createFromResource(const RsrcSpec& spec) override;
    std::string displayText(const PMString& text) const override { return host_.displayText(text); }
    void changed(Widget& widget) override;
    void callPlugin(const std::string& what, const std::function<void()>& call) override;

private:
    struct StringData : IStringData {
        PMString text;
        void Set(const PMString& value) override { text = value; }
        PMString GetString() const override { return text; }
    };
    struct IntData : IIntData {
        int32 value = 0;
        void Set(int32 v) override { value = v; }
        int32 GetInt() const override { return value; }
    };
    void forEachObserver(const std::function<void(IObserver&)>& visit);

    DialogHost& host_;
    RsrcSpec spec_;
    std::string plugin_;
    std::string file_;
    std::string title_;
    std::unique_ptr<Widget> root_;
    std::unique_ptr<IPMUnknown> controller_;
    std::unique_ptr<IPMUnknown> observer_;
    StringData stringData_;
    IntData intData_;
    bool open_ = false;
    bool shown_ = false;
    bool closesByItself_ = false;
    bool cancelled_ = false;
    int waiting_ = 0;
};

} // namespace Galley
