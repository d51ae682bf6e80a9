#include <kivmetadataui/MetadataErrorDialog.h>

#include "ModuleResources.h"

#include <kivcore/FileUtils.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_StaticText.h>
#include <kivui/drawbot/Drawbot.h>

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>

#include <utility>

namespace kivmetadataui {

namespace {

constexpr char16_t kXMPPageAddress[] = u"https://developer.adobe.com/xmp/docs/";
constexpr float kCellPadding = 4.0f;

MetadataErrorDialog::LinkOpener &LinkOpenerSlot()
{
    static MetadataErrorDialog::LinkOpener opener;
    return opener;
}

// A static text does not report clicks; this turns a click on the link line
// into the line's change notification.
class LinkClickFilter : public QObject {
public:
    LinkClickFilter(QObject *inParent, kivui::MessageHandler inHandler, kivui::UI_Node *inSource)
        : QObject(inParent), mHandler(std::move(inHandler)), mSource(inSource)
    {
    }

protected:
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override
    {
        if (inEvent->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent *>(inEvent)->button() == Qt::LeftButton && mHandler && *mHandler) {
            kivui::UI_ControlChangedMessage message(mSource);
            (*mHandler)(&message);
            return true;
        }
        return QObject::eventFilter(inWatched, inEvent);
    }

private:
    kivui::MessageHandler mHandler;
    kivui::UI_Node *mSource;
};

} // namespace

struct MetadataErrorDialog::Private {
    struct Texts {
        std::u16string description;
        std::u16string context;
    };
    // Indexed by row: the rows are top-level and appended in this order.
    std::vector<Texts> rows;
    kivui::MessageHandler linkHandler;
};

MetadataErrorDialog::MetadataErrorDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent,
                                         bool inResizable)
    : MetadataErrorDialog(inSupplier, inParent, inResizable, kivmetadata::GetErrorInfos())
{
}

MetadataErrorDialog::MetadataErrorDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent,
                                         bool inResizable, std::vector<kivmetadata::ErrorInfo> const &inErrors)
    : kivui::UI_ArchivedDialog(inSupplier, module::GetResourceManager(), kArchiveName, kTitleKey, inParent),
      d(std::make_unique<Private>())
{
    SetUp(inErrors, inResizable);
}

MetadataErrorDialog::~MetadataErrorDialog()
{
    if (d->linkHandler) *d->linkHandler = nullptr;
}

void MetadataErrorDialog::SetUp(std::vector<kivmetadata::ErrorInfo> const &inErrors, bool inResizable)
{
    UI_SetNodeID(kNodeID);
    SetMinimumSize(kivcore::PointF{kMinimumWidth, kMinimumHeight});
    // No saved rectangle, or one of 0 by 0, opens at the minimum size.
    RestoreWindowPositionAndSize(kivcore::PointF{kMinimumWidth, kMinimumHeight});
    SetResizable(inResizable);

    SetButtons(FindNode(kOkButtonID), nullptr);

    auto list = FindControl<kivui::UI_MultiColumnTree>(kErrorListID);
    list->SetColumnCount(2);
    list->SetGridLines(true);
    list->SetShowHeader(true);
    list->SetColumnHeader(0, kivcore::config::Localizer::Localize(kColumn0Key));
    list->SetColumnHeader(1, kivcore::config::Localizer::Localize(kColumn1Key));
    list->SetSortIndicatorShown(false);
    list->SetColumnsMovable(false);
    list->SetRootIsDecorated(false);
    list->SetColumnsAutoResize(true);
    list->SetColumnWidth(0, kColumn0Width);
    list->SetColumnWidth(1, kColumn1Width);
    list->SetDrawCellFxn([this](kivui::drawbot::Drawbot &drawbot, kivui::UI_MultiColumnTreeRow::IntrusivePtr const &row,
                                int column, kivcore::RectF const &rect) { DrawCell(drawbot, row, column, rect); });

    d->rows.reserve(inErrors.size());
    for (kivmetadata::ErrorInfo const &error : inErrors) {
        d->rows.push_back(Private::Texts{kivcore::utility::Utf8ToUtf16(error.mDescription),
                                         kivcore::utility::Utf8ToUtf16(error.mContext)});
    }
    // One model update for all rows: the log can be long.
    list->AppendRows({}, static_cast<int>(d->rows.size()));
    list->Layout();

    auto link = FindControl<kivui::UI_StaticText>(kErrorLinkID);
    link->SetText(GetLinkAddress());
    link->SetTextMode(kivui::UI_StaticText::kTextModeSelectable);
    d->linkHandler =
        std::make_shared<std::function<void(kivui::Message *)>>([this](kivui::Message *) { OnLinkClicked(); });
    link->NotifyWhenChanged(d->linkHandler);
    if (QLabel *label = link->GetLabel()) {
        label->setTextInteractionFlags(Qt::NoTextInteraction);
        label->setCursor(Qt::PointingHandCursor);
        label->installEventFilter(new LinkClickFilter(label, d->linkHandler, link.get()));
    }
}

std::u16string MetadataErrorDialog::GetLinkAddress()
{
    return kXMPPageAddress;
}

MetadataErrorDialog::LinkOpener MetadataErrorDialog::SetLinkOpener(LinkOpener inOpener)
{
    return std::exchange(LinkOpenerSlot(), std::move(inOpener));
}

int MetadataErrorDialog::CountErrors() const
{
    return static_cast<int>(d->rows.size());
}

std::u16string MetadataErrorDialog::GetRowDescription(int inRow) const
{
    if (inRow < 0 || inRow >= CountErrors()) return {};
    return d->rows[std::size_t(inRow)].description;
}

std::u16string MetadataErrorDialog::GetRowContext(int inRow) const
{
    if (inRow < 0 || inRow >= CountErrors()) return {};
    return d->rows[std::size_t(inRow)].context;
}

void MetadataErrorDialog::DrawCell(kivui::drawbot::Drawbot &inDrawbot,
                                   kivui::UI_MultiColumnTreeRow::IntrusivePtr const &inRow, int inColumn,
                                   kivcore::RectF const &inRect) const
{
    if (!inRow || inRow->GetParentRow()) return;
    int const index = inRow->GetIndexInParent();
    if (index < 0 || index >= CountErrors()) return;
    Private::Texts const &texts = d->rows[std::size_t(index)];
    std::u16string const *text = inColumn == 0 ? &texts.description : inColumn == 1 ? &texts.context : nullptr;
    if (!text) return;
    kivcore::RectF const inner{inRect.x + kCellPadding, inRect.y, std::max(0.0f, inRect.width - 2 * kCellPadding),
                               inRect.height};
    inDrawbot.DrawText(*text, inner);
}

void MetadataErrorDialog::OnLinkClicked()
{
    LinkOpener const opener = LinkOpenerSlot();
    if (opener)
        opener(GetLinkAddress());
    else
        kivcore::utility::OpenFileInDefaultApplication(GetLinkAddress());
}

void MetadataErrorDialog::DefaultCloseOk()
{
    SaveWindowPositionAndSize();
    kivui::UI_ArchivedDialog::DefaultCloseOk();
}

void MetadataErrorDialog::DefaultCloseCancel()
{
    SaveWindowPositionAndSize();
    kivui::UI_ArchivedDialog::DefaultCloseCancel();
}

} // namespace kivmetadataui
