#include <kivmetadataui/Control.h>

#include <kivui/UI_SubView.h>

namespace kivmetadataui {

struct Control::Private {
    // Declaration order matters: the callable is destroyed before the view.
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mView;
    std::function<void()> mOnDestroy;
};

Control::Control(kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &inView,
                 std::function<void()> const &inOnDestroy)
    : d(std::make_unique<Private>(Private{inView, inOnDestroy}))
{
}

Control::~Control()
{
    if (d->mOnDestroy) d->mOnDestroy();
}

kivcore::utility::IntrusivePtr<kivui::UI_SubView> const &Control::GetView() const
{
    return d->mView;
}

} // namespace kivmetadataui
