#include "host/gui/QtPresenter.h"

#include "host/dialogs/Dialog.h"
#include "host/gui/QtDialogView.h"
#include "host/loop/MainLoop.h"

#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace Galley {

QtPresenter::QtPresenter() = default;
QtPresenter::~QtPresenter() = default;

QtDialogView* QtPresenter::viewOf(const Dialog& dialog) const {
    auto found = views_.find(&dialog);
    return found == views_.end() ? nullptr : found->second.get();
}

QtDialogView* QtPresenter::frontView() const {
    return opened_.empty() ? nullptr : viewOf(*opened_.back());
}

void QtPresenter::dialogOpened(Dialog& dialog) {
    try {
        // A dialog opened from another (Replace Font from the fonts dialog) stays over it.
        QtDialogView* front = frontView();
        auto view =
            std::make_unique<QtDialogView>(dialog, *loop_, front ? front->window() : parent_);
        view->window()->show();
        view->window()->raise();
        view->window()->activateWindow();
        views_[&dialog] = std::move(view);
        opened_.push_back(&dialog);
        if (onDialogOpened)
            onDialogOpened(dialog);
    } catch (const std::exception& error) {
        status(error.what());
        // A dialog nobody can see would wait for ever.
        loop_->post([&dialog] { dialog.cancel(); });
    }
}

void QtPresenter::dialogChanged(Dialog& dialog, Widget& widget) {
    if (QtDialogView* view = viewOf(dialog))
        view->sync(&widget);
}

void QtPresenter::dialogClosed(Dialog& dialog) {
    views_.erase(&dialog);
    std::erase(opened_, &dialog);
    giveFocusBack();
    if (onDialogClosed)
        onDialogClosed();
}

void QtPresenter::giveFocusBack() {
    if (QtDialogView* front = frontView()) {
        front->takeFocusBack();
    } else if (parent_) {
        parent_->raise();
        parent_->activateWindow();
        parent_->setFocus(Qt::OtherFocusReason);
    }
}

int16 QtPresenter::alert(IAlertPresenter::Kind kind, const std::string& message,
                         const std::string buttons[3], int16 defaultButton) {
    QMessageBox box(kind == IAlertPresenter::Kind::information ? QMessageBox::Information
                                                               : QMessageBox::Warning,
                    "Galley", QString::fromStdString(message), QMessageBox::NoButton,
                    frontView() ? frontView()->window() : parent_);
    QAbstractButton* answers[3] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < 3; ++i)
        if (!buttons[i].empty())
            answers[i] = box.addButton(QString::fromStdString(buttons[i]), QMessageBox::AcceptRole);
    if (!answers[0])
        answers[0] = box.addButton(QMessageBox::Ok);
    if (defaultButton >= 1 && defaultButton <= 3 && answers[defaultButton - 1])
        box.setDefaultButton(qobject_cast<QPushButton*>(answers[defaultButton - 1]));
    box.exec();
    for (int i = 0; i < 3; ++i)
        if (answers[i] && box.clickedButton() == answers[i])
            return static_cast<int16>(i + 1);
    return defaultButton;
}

void QtPresenter::setOnStatus(std::function<void(const std::string&)> show) {
    onStatus_ = std::move(show);
    for (const std::string& message : std::exchange(pendingStatus_, {}))
        onStatus_(message);
}

void QtPresenter::notice(const std::string& message) {
    if (!loop_) {
        status(message);
        return;
    }
    loop_->post([this, message] { status(message); });
}

void QtPresenter::status(const std::string& message) {
    if (onStatus_)
        onStatus_(message);
    else
        pendingStatus_.push_back(message);
}

void QtPresenter::documentChanged(IdmlDocument& document) {
    if (onDocumentChanged)
        onDocumentChanged(document);
}

} // namespace Galley
