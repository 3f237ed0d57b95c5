#include "host/dialogs/Dialog.h"

#include "sdk/HostIdentifiers.h"

#include <stdexcept>

namespace Galley {

Dialog::Dialog(DialogHost& host, const RsrcSpec& spec, DialogType) : host_(host), spec_(spec) {
    DialogHost::DialogResource resource = host.dialogResource(spec);
    plugin_ = resource.plugin;
    file_ = resource.file;
    title_ = resource.description.text;
    root_ = std::make_unique<Widget>(resource.description, *this);
    root_->forEach([&](Widget& widget) { host_.addWidgetAddIns(widget); });
    const bool made = host_.callPlugin("creating the dialog " + std::to_string(spec.rsrcID), [&] {
        controller_ = resource.controller(this);
        observer_ = resource.observer(this);
    });
    if (!made || !dynamic_cast<IDialogController*>(controller_.get()) ||
        !dynamic_cast<IObserver*>(observer_.get()))
        throw std::runtime_error("plug-in " + plugin_ +
                                 " made no controller or observer for dialog " +
                                 std::to_string(spec.rsrcID));
}

Dialog::~Dialog() {
    Close();
    observer_.reset();
    controller_.reset();
    root_.reset();
}

IDialogController* Dialog::GetController() {
    return dynamic_cast<IDialogController*>(controller_.get());
}

IObserver* Dialog::GetObserver() {
    return dynamic_cast<IObserver*>(observer_.get());
}

IPMUnknown* Dialog::QueryAddIn(PMIID iid) const {
    return host_.dialogAddIn(spec_.rsrcID, iid);
}

void Dialog::forEachObserver(const std::function<void(IObserver&)>& visit) {
    if (IObserver* observer = GetObserver())
        visit(*observer);
    root_->forEach([&](Widget& widget) {
        for (const auto& [iid, addIn] : widget.addIns())
            if (auto* observer = dynamic_cast<IObserver*>(addIn.get()))
                visit(*observer);
    });
}

void Dialog::Open(IDialog*) {
    if (open_)
        return;
    open_ = true;
    cancelled_ = false;
    callPlugin("initialising the dialog's fields", [&] {
        if (IDialogController* controller = GetController())
            controller->InitializeDialogFields(nullptr);
    });
    forEachObserver([&](IObserver& observer) {
        callPlugin("attaching the dialog's observer", [&] { observer.AutoAttach(); });
    });
    if (open_) {
        host_.dialogOpened(*this);
        shown_ = true;
    }
}

void Dialog::Close(int32) {
    if (!open_)
        return;
    open_ = false;
    shown_ = false;
    forEachObserver([&](IObserver& observer) {
        callPlugin("detaching the dialog's observer", [&] { observer.AutoDetach(); });
    });
    host_.dialogClosed(*this);
}

void Dialog::WaitForDialog(bool allowIdleTasks) {
    ++waiting_;
    host_.waitUntil([this] { return !open_; }, allowIdleTasks);
    --waiting_;
}

bool Dialog::pressButton(Widget& button) {
    if (!open_ || !button.IsEnabled())
        return false;
    callPlugin("the button " + button.GetName(), [&] { button.press(); });
    const WidgetID id = button.GetWidgetID();
    if (id == kCancelButton_WidgetID && open_)
        cancelled_ = true;
    if ((id == kOKButtonWidgetID || id == kCancelButton_WidgetID) && open_)
        Close();
    return true;
}

void Dialog::PressDefaultButton() {
    Widget* chosen = nullptr;
    root_->forEach([&](Widget& widget) {
        if (!chosen && widget.kind() == Widget::Kind::button && widget.isDefaultButton())
            chosen = &widget;
    });
    if (!chosen)
        chosen = static_cast<Widget*>(root_->FindWidget(kOKButtonWidgetID, 9999));
    if (chosen)
        pressButton(*chosen);
}

void Dialog::cancel() {
    if (auto* cancelButton = static_cast<Widget*>(root_->FindWidget(kCancelButton_WidgetID, 9999)))
        pressButton(*cancelButton);
    if (open_) {
        cancelled_ = true;
        Close();
    }
}

std::unique_ptr<Widget> Dialog::createFromResource(const RsrcSpec& spec) {
    try {
        auto widget = std::make_unique<Widget>(host_.widgetResource(spec), *this);
        widget->forEach([&](Widget& part) { host_.addWidgetAddIns(part); });
        return widget;
    } catch (const std::exception&) {
        return nullptr; // the host reported why
    }
}

void Dialog::changed(Widget& widget) {
    // Changes while the fields are initialised are part of what opening shows.
    if (shown_)
        host_.dialogChanged(*this, widget);
}

void Dialog::callPlugin(const std::string& what, const std::function<void()>& call) {
    host_.callPlugin(what, call);
}

} // namespace Galley
