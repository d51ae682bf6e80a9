#include "ControlBinding_p.h"

#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlKind.h>

#include <kivmetadata/MetaDataProvider.h>
#include <kivui/Message.h>
#include <kivui/UI_TextEdit.h>

#include <map>
#include <utility>

namespace kivmetadataui {
namespace {

// The binding of each live control, for RefreshControl.
std::map<kivui::UI_ControlView const *, std::weak_ptr<ControlBinding>> &Bindings()
{
    static std::map<kivui::UI_ControlView const *, std::weak_ptr<ControlBinding>> bindings;
    return bindings;
}

} // namespace

ControlBinding::ControlBinding(ResolvedValue inValue, kivui::UI_ControlView *inControl, ControlKind inKind)
    : mValue(std::move(inValue)), mControl(inControl), mKind(inKind)
{
}

std::shared_ptr<Control> ControlBinding::Bind(kivcore::utility::IntrusivePtr<kivui::UI_ControlView> const &inControl,
                                              ControlKind inKind, ResolvedValue inValue,
                                              std::shared_ptr<std::function<void(kivui::Message *)>> const &inOnChanged,
                                              std::shared_ptr<std::function<void()>> const &inSizeHandler)
{
    auto binding = std::make_shared<ControlBinding>(std::move(inValue), inControl.get(), inKind);
    binding->Show();

    auto changedHandler =
        std::make_shared<std::function<void(kivui::Message *)>>([binding, inOnChanged](kivui::Message *inMessage) {
            if (binding->Write() && inOnChanged && *inOnChanged) (*inOnChanged)(inMessage);
        });
    inControl->NotifyWhenChanged(changedHandler);

    std::weak_ptr<ControlBinding> weak = binding;
    auto metaHandler = std::make_shared<kivmetadata::MetaDataProvider::ChangeListener>([weak](kivmetadata::XMPMeta *) {
        if (auto bound = weak.lock()) bound->OnProviderChanged();
    });
    if (binding->mValue.mProvider) binding->mValue.mProvider->AddChangeListener(metaHandler);

    kivui::UI_ControlView const *key = inControl.get();
    Bindings()[key] = binding;
    return std::make_shared<Control>(inControl, [changedHandler, metaHandler, inSizeHandler, key] {
        Bindings().erase(key);
        Disconnect(changedHandler, metaHandler, inSizeHandler, nullptr);
    });
}

std::shared_ptr<ControlBinding> ControlBinding::Of(kivui::UI_ControlView const *inControl)
{
    auto found = Bindings().find(inControl);
    return found != Bindings().end() ? found->second.lock() : nullptr;
}

void ControlBinding::Show()
{
    const bool was = mShowing;
    mShowing = true;
    UpdateControlOfKind(mValue, mKind, mControl);
    mShowing = was;
}

void ControlBinding::Show(ResolvedValue inValue)
{
    mValue = std::move(inValue);
    Show();
}

bool ControlBinding::Write()
{
    if (mShowing || mWriting) return false;
    mWriting = true;
    UpdateValueOfKind(mValue, mKind, mControl);
    mWriting = false;
    return true;
}

void ControlBinding::OnProviderChanged()
{
    if (mWriting) return;
    if (auto *text = dynamic_cast<kivui::UI_TextEdit *>(mControl); text && text->IsEditing()) return;
    Show();
}

} // namespace kivmetadataui
