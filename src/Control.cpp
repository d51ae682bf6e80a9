#include <kivmetadataui/Control.h>

#include <kivui/UI_SubView.h>

namespace kivmetadataui {

Control::Control(kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &inView, std::function<void()> const &inOnDestroy)
    : mView(inView), mOnDestroy(inOnDestroy)
{
}

Control::~Control()
{
    if (mOnDestroy) mOnDestroy();
}

} // namespace kivmetadataui
