#include "ui/SDKListBoxHelper.h"

#include "sdk/IControlView.h"
#include "sdk/IListBox.h"
#include "sdk/ResourceName.h"
#include "ui/DialogWidgets.h"

IControlView* SDKListBoxHelper::FindCurrentListBox() const {
    return DialogWidgets::find(owner_, listBox_);
}

void SDKListBoxHelper::EmptyCurrentListBox() {
    IControlView* listBox = FindCurrentListBox();
    if (IListControlData* elements = listBox ? listBox->GetListControlData() : nullptr)
        elements->RemoveAll();
}

bool SDKListBoxHelper::AddElement(const PMString& text, WidgetID textWidget, int position) {
    IControlView* listBox = FindCurrentListBox();
    IListControlData* elements = listBox ? listBox->GetListControlData() : nullptr;
    IControlView* element =
        elements
            ? elements->AddListElementWidget(
                  RsrcSpec(MLocaleSetting::GetLocale(), plugin_, kViewRsrcType, element_), position)
            : nullptr;
    if (!element)
        return false;
    IControlView* label = element->GetWidgetID() == textWidget
                              ? element
                              : DialogWidgets::find(element->GetPanelControlData(), textWidget);
    DialogWidgets::setText(label, text);
    return true;
}

int SDKListBoxHelper::getSelected() const {
    IControlView* listBox = FindCurrentListBox();
    IListBoxController* selection = listBox ? listBox->GetListBoxController() : nullptr;
    if (!selection)
        return -1;
    K2Vector<int32> positions;
    selection->GetSelected(positions);
    return positions.empty() ? -1 : positions.front();
}
