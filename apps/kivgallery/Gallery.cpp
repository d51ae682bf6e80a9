#include "Gallery.h"

#include <kivevefactory/UI_EveViewBase.h>

#include <kivui/MessageBoxes.h>
#include <kivui/ResourceManager.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/UI_ArchivedDialog.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_Dialog.h>
#include <kivui/UI_Divider.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_TextEdit_MS.h>
#include <kivui/UI_URLEdit.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/SupplierInterface.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSet>

#include <algorithm>

namespace kivgallery {

namespace {

template <typename T> using Ptr = kivcore::utility::IntrusivePtr<T>;

constexpr float kPageWidth = 600.0f;
constexpr float kCaptionWidth = 190.0f;
constexpr float kMargin = 16.0f;
constexpr float kRowGap = 10.0f;

// Controls finish some of their layout in posted events and short timers
// (a combo box adjusts its size 20 ms after its items change): the pictures
// show the state a user sees once that has happened.
void Settle()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 60) {
        QApplication::sendPostedEvents();
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

// A caption in the left column of a page.
class Caption : public kivui::UI_Node {
public:
    explicit Caption(QString const &text) : kivui::UI_Node(new QLabel(text)) {}
};

// A page: captions on the left, the controls on the right, one per row.
class Page {
public:
    explicit Page(kivui::drawbot::SupplierInterface *supplier) : root(new kivui::UI_SubView())
    {
        root->UI_SetDrawSupplier(supplier);
        root->UI_GetWidget()->setAutoFillBackground(true);
    }

    template <typename T> T *Add(QString const &caption, Ptr<T> const &node, float width, float height)
    {
        Ptr<Caption> label(new Caption(caption));
        root->ChildPushBack(label);
        root->ChildPushBack(node);
        float const rowHeight = std::max(height, 24.0f);
        // The caption is centred on low controls (a divider) and on the first line of tall ones.
        float const captionHeight = std::clamp(height, 20.0f, 24.0f);
        float const captionY = y + std::min(0.0f, (height - captionHeight) / 2.0f);
        label->UI_SetLocalRectF({kMargin, captionY, kCaptionWidth - kMargin, captionHeight});
        node->UI_SetLocalRectF({kCaptionWidth, y, width, height});
        y += rowHeight + kRowGap;
        return node.get();
    }

    QWidget *Finish()
    {
        root->UI_SetLocalRectF({0, 0, kPageWidth, y + kMargin - kRowGap});
        QWidget *w = root->UI_GetWidget();
        w->show();
        Settle();
        return w;
    }

    Ptr<kivui::UI_SubView> root;
    float y = kMargin;
};

// Draws with the Drawbot: texts measured and boxed, so clipping or wrong
// measuring shows as text crossing its box.
class DrawbotSample : public kivui::UI_SubView {
public:
    void UI_Draw(kivui::drawbot::Drawbot &bot) override
    {
        QColor const box = QApplication::palette().color(QPalette::Highlight);
        float y = 6.0f;
        struct Line {
            char16_t const *text;
            float size;
            char const *style;
        } const lines[] = {
            {u"Regular text at the default size", 0.0f, ""},
            {u"Bold text measured and boxed", 0.0f, "Bold"},
            {u"Larger italic text", 18.0f, "Italic"},
            {u"Small print: 10 px", 10.0f, ""},
        };
        for (Line const &line : lines) {
            kivcore::PointF const size = bot.MeasureText(line.text, line.size, line.style);
            kivcore::RectF const rect{8.0f, y, size.x, size.y};
            bot.StrokeRect({rect.x - 2, rect.y - 1, rect.width + 4, rect.height + 2}, box);
            bot.DrawText(line.text, rect, kivui::drawbot::Drawbot::kAlignLeft, line.size, line.style);
            y += size.y + 8.0f;
        }
        kivcore::RectF const elided{8.0f, y, 150.0f, bot.GetSupplier().GetLineHeight()};
        bot.StrokeRect({elided.x - 2, elided.y - 1, elided.width + 4, elided.height + 2}, box);
        bot.DrawText(u"A text too long for its box is elided", elided);
        bot.DrawText(u"centred", {170.0f, y, 120.0f, elided.height}, kivui::drawbot::Drawbot::kAlignCenter);
        bot.DrawText(u"right", {300.0f, y, 90.0f, elided.height}, kivui::drawbot::Drawbot::kAlignRight);
        bot.StrokeRect({168.0f, y - 1, 124.0f, elided.height + 2}, box);
        bot.StrokeRect({298.0f, y - 1, 94.0f, elided.height + 2}, box);
    }
};

// A dialog made in code, with OK and Cancel, to show the plain dialog frame.
class SampleDialog : public kivui::UI_Dialog {
public:
    explicit SampleDialog(kivui::drawbot::SupplierInterface *supplier)
        : kivui::UI_Dialog(supplier, "$$$/kivgallery/SampleDialog/Title=Rename Setting")
    {
        Ptr<Caption> label(new Caption(QStringLiteral("New name:")));
        Ptr<kivui::UI_TextEdit> edit(new kivui::UI_TextEdit());
        ChildPushBack(label);
        ChildPushBack(edit);
        edit->SetValue(u"Basic", false);
        mOk = MakeButton(u"OK");
        mCancel = MakeButton(u"Cancel");
        UI_SetLocalRectF({0, 0, 360, 110});
        label->UI_SetLocalRectF({16, 20, 90, 24});
        edit->UI_SetLocalRectF({110, 20, 234, 24});
        mCancel->UI_SetLocalRectF({264, 70, 80, 26});
        mOk->UI_SetLocalRectF({174, 70, 80, 26});
        SetButtons(mOk.get(), mCancel.get());
    }

private:
    class Button : public kivui::UI_Node {
    public:
        explicit Button(QString const &text) : kivui::UI_Node(new QPushButton(text)) {}
    };
    Ptr<kivui::UI_Node> MakeButton(std::u16string const &text)
    {
        Ptr<kivui::UI_Node> button(new Button(QString::fromStdU16String(text)));
        ChildPushBack(button);
        return button;
    }
    Ptr<kivui::UI_Node> mOk;
    Ptr<kivui::UI_Node> mCancel;
};

bool HasContent(QImage const &image)
{
    // A rendered page has text and frames: many colours. Sample a grid.
    QSet<QRgb> colours;
    int const stepX = std::max(1, image.width() / 64);
    int const stepY = std::max(1, image.height() / 64);
    for (int y = 0; y < image.height(); y += stepY) {
        for (int x = 0; x < image.width(); x += stepX)
            colours.insert(image.pixel(x, y));
    }
    return colours.size() >= 3;
}

} // namespace

Gallery::Gallery(QString folder, kivui::utility::ResourceManager const *resources,
                 kivui::drawbot::SupplierInterface *supplier)
    : mFolder(std::move(folder)), mResources(resources), mSupplier(supplier)
{
}

void Gallery::RenderAll(QString const &look)
{
    mLook = look;
    QDir(mFolder).mkpath(look);
    TextControls();
    ChoiceControls();
    Views();
    DrawingAndImages();
    Dialogs();
    MessageBoxes();
}

void Gallery::Check(QString const &file, QImage const &image)
{
    if (image.isNull() || image.width() < 8 || image.height() < 8)
        mProblems << file + QStringLiteral(": empty picture");
    else if (!HasContent(image))
        mProblems << file + QStringLiteral(": picture of one colour");
}

void Gallery::Save(QString const &name, QWidget *widget)
{
    QString const file = QDir(mFolder).filePath(mLook + QLatin1Char('/') + name + QStringLiteral(".png"));
    QImage const image = widget->grab().toImage();
    Check(file, image);
    if (!image.save(file, "png"))
        mProblems << file + QStringLiteral(": cannot write");
    else
        mWritten << file;
}

void Gallery::TextControls()
{
    Page page(mSupplier);
    Ptr<kivui::UI_TextEdit> edit(new kivui::UI_TextEdit());
    edit->SetValue(u"Sunset over the harbour", false);
    page.Add(QStringLiteral("UI_TextEdit"), edit, 300, 24);

    Ptr<kivui::UI_TextEdit> unknown(new kivui::UI_TextEdit());
    unknown->SetUnknownStateText(u"<Multiple Values>");
    unknown->SetValueUnknown(true);
    page.Add(QStringLiteral("UI_TextEdit (mixed)"), unknown, 300, 24);

    Ptr<kivui::UI_TextEdit> readOnly(new kivui::UI_TextEdit());
    readOnly->SetValue(u"Read-only text", false);
    readOnly->SetReadOnlyMode(true);
    page.Add(QStringLiteral("UI_TextEdit (read-only)"), readOnly, 300, 24);

    Ptr<kivui::UI_TextEdit> disabled(new kivui::UI_TextEdit());
    disabled->SetValue(u"Disabled text", false);
    disabled->SetDisabled(true);
    page.Add(QStringLiteral("UI_TextEdit (disabled)"), disabled, 300, 24);

    Ptr<kivui::UI_TextEdit_MS> multi(new kivui::UI_TextEdit_MS());
    multi->SetValue(u"A description over several lines:\nthe harbour at dusk,\nboats coming in,\nlights on the water,\n"
                    u"and one more line to make the scroll bar appear.\nLast line.",
                    false);
    page.Add(QStringLiteral("UI_TextEdit_MS"), multi, 300, 80);

    Ptr<kivui::UI_AutoCompleteTextEdit> complete(new kivui::UI_AutoCompleteTextEdit());
    complete->SetEntryList({u"Amsterdam", u"Antwerp", u"Athens"});
    complete->SetValue(u"Antwerp", false);
    page.Add(QStringLiteral("UI_AutoCompleteTextEdit"), complete, 300, 24);

    Ptr<kivui::UI_URLEdit> url(new kivui::UI_URLEdit());
    url->SetValue(u"https://www.adobe.com/products/xmp.html", false);
    page.Add(QStringLiteral("UI_URLEdit"), url, 300, 24);

    Ptr<kivui::UI_DragableTextEdit> dragable(new kivui::UI_DragableTextEdit());
    dragable->SetLineCount(3);
    dragable->SetValue(u"A text whose height\nthe user drags\nat its bottom edge", false);
    page.Add(QStringLiteral("UI_DragableTextEdit"), dragable, 300, 64);

    kivui::drawbot::Drawbot measuring(*mSupplier);
    Ptr<kivui::UI_StaticText> plainText(new kivui::UI_StaticText(u"Static text, plain"));
    kivcore::PointF size = plainText->GetPreferredSize(&measuring);
    page.Add(QStringLiteral("UI_StaticText"), plainText, size.x, size.y);

    Ptr<kivui::UI_StaticText> boldText(new kivui::UI_StaticText(u"Bold static text at 14"));
    boldText->SetFontStyle("Bold");
    boldText->SetFontSize(14.0f);
    size = boldText->GetPreferredSize(&measuring);
    page.Add(QStringLiteral("UI_StaticText (bold)"), boldText, size.x, size.y);

    Ptr<kivui::UI_StaticText> link(new kivui::UI_StaticText(u"https://www.adobe.com/products/xmp.html"));
    link->SetTextMode(3);
    size = link->GetPreferredSize(&measuring);
    page.Add(QStringLiteral("UI_StaticText (link)"), link, size.x, size.y);

    Ptr<kivui::UI_StaticText> centred(new kivui::UI_StaticText(u"Centred in its box"));
    centred->SetAlignment(1);
    page.Add(QStringLiteral("UI_StaticText (centred)"), centred, 300, size.y);
    Save(QStringLiteral("controls_text"), page.Finish());
}

namespace {

QIcon MakeIcon(bool on)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor const colour = QApplication::palette().color(on ? QPalette::Highlight : QPalette::WindowText);
    painter.setPen(QPen(colour, 2));
    painter.drawEllipse(QRectF(3, 3, 10, 10));
    if (on) painter.setBrush(colour), painter.drawEllipse(QRectF(6, 6, 4, 4));
    return QIcon(pixmap);
}

} // namespace

void Gallery::ChoiceControls()
{
    Page page(mSupplier);
    kivui::drawbot::Drawbot measuring(*mSupplier);
    char16_t const *const checkTexts[] = {u"Unchecked", u"Checked", u"Mixed"};
    for (int i = 0; i < 3; ++i) {
        Ptr<kivui::UI_Checkbox> box(new kivui::UI_Checkbox(checkTexts[i]));
        box->SetValue(static_cast<kivui::UI_Checkbox::CheckboxValue>(i));
        kivcore::PointF const size = box->GetPreferredSize(&measuring);
        page.Add(QStringLiteral("UI_Checkbox (%1)").arg(QString::fromStdU16String(checkTexts[i]).toLower()), box,
                 std::max(size.x, 120.0f), std::max(size.y, 20.0f));
    }

    Ptr<kivui::UI_Popup> popup(new kivui::UI_Popup());
    popup->AddItem(u"Select Version...");
    popup->AddSeparator();
    popup->AddItem(u"GY/GX6");
    popup->AddItem(u"GX5");
    popup->SetValue(2);
    page.Add(QStringLiteral("UI_Popup"), popup, 200, 26);

    Ptr<kivui::UI_Popup> editable(new kivui::UI_Popup());
    editable->SetPopupType(1);
    editable->AddItem(u"Basic");
    editable->AddItem(u"Camera Data");
    editable->SetValueString(u"My own setting");
    page.Add(QStringLiteral("UI_Popup (editable)"), editable, 200, 26);

    Ptr<kivui::UI_RadioGroup> radio(new kivui::UI_RadioGroup());
    radio->AddButton(u"Clear existing properties and replace", u"All existing properties will be cleared.");
    radio->AddButton(u"Keep original metadata, replace matching", u"");
    radio->AddButton(u"Keep original metadata, append matching", u"");
    radio->SetValue(1);
    page.Add(QStringLiteral("UI_RadioGroup"), radio, 380, 72);

    Ptr<kivui::UI_HotTextNumber> number(new kivui::UI_HotTextNumber());
    number->SetDecimalPlaces(2);
    number->SetValue(3.25);
    page.Add(QStringLiteral("UI_HotTextNumber"), number, 100, 24);

    Ptr<kivui::UI_StarRating> stars(new kivui::UI_StarRating());
    stars->SetValue(3);
    kivcore::PointF const starSize = stars->GetPreferredSize(&measuring);
    page.Add(QStringLiteral("UI_StarRating"), stars, starSize.x, starSize.y);

    Ptr<kivui::UI_PictureButton> picture(new kivui::UI_PictureButton());
    picture->SetImages(MakeIcon(false), MakeIcon(true));
    picture->SetOn(true);
    page.Add(QStringLiteral("UI_PictureButton (on)"), picture, 24, 24);

    Ptr<kivui::UI_TextButton> button(new kivui::UI_TextButton(u"Save Settings..."));
    page.Add(QStringLiteral("UI_TextButton"), button, 140, 26);

    Ptr<kivui::UI_TextButton> disabledButton(new kivui::UI_TextButton(u"Delete Settings..."));
    disabledButton->SetDisabled(true);
    page.Add(QStringLiteral("UI_TextButton (disabled)"), disabledButton, 140, 26);

    Ptr<kivui::UI_Divider> divider(new kivui::UI_Divider());
    page.y += 8.0f; // a thin control gets room around it
    page.Add(QStringLiteral("UI_Divider"), divider, 380, 2);
    Save(QStringLiteral("controls_choice"), page.Finish());
}

void Gallery::Views()
{
    Page page(mSupplier);
    Ptr<kivui::UI_ScrollView> scroll(new kivui::UI_ScrollView());
    page.Add(QStringLiteral("UI_ScrollView"), scroll, 300, 90);
    for (int i = 0; i < 8; ++i) {
        Ptr<Caption> line(new Caption(QStringLiteral("Scrolled line %1").arg(i + 1)));
        scroll->GetContentView()->ChildPushBack(line);
        line->UI_SetLocalRectF({6, 4.0f + 22.0f * i, 260, 20});
    }
    scroll->SetContentRect({0, 0, 280, 8 * 22.0f + 8});
    scroll->Update();

    Ptr<kivui::UI_SectionView> openSection(new kivui::UI_SectionView());
    openSection->SetHeaderText(u"Opened section");
    Ptr<Caption> inside(new Caption(QStringLiteral("Content of the section")));
    openSection->GetContentView()->ChildPushBack(inside);
    inside->UI_SetLocalRectF({8, 4, 240, 20});
    kivcore::PointF const frame = openSection->FrameSizeForContentSize({300, 30});
    page.Add(QStringLiteral("UI_SectionView"), openSection, frame.x, frame.y);

    Ptr<kivui::UI_SectionView> closedSection(new kivui::UI_SectionView());
    closedSection->SetHeaderText(u"Closed section");
    closedSection->SetOpened(false);
    page.Add(QStringLiteral("UI_SectionView (closed)"), closedSection, 300, closedSection->GetHeaderHeight());

    Ptr<kivui::UI_MultiColumnTree> tree(new kivui::UI_MultiColumnTree());
    tree->SetColumnCount(2);
    tree->SetShowHeader(true);
    tree->SetGridLines(true);
    tree->SetColumnHeader(0, u"Description");
    tree->SetColumnHeader(1, u"Context");
    tree->SetColumnsAutoResize(true);
    tree->SetColumnWidth(0, 200);
    page.Add(QStringLiteral("UI_MultiColumnTree"), tree, 380, 150);
    struct Entry {
        char16_t const *a, *b;
    } const entries[] = {{u"Dublin Core", u"dc"},
                         {u"Title", u"dc:title"},
                         {u"Creator", u"dc:creator"},
                         {u"Photoshop", u"photoshop"},
                         {u"City", u"photoshop:City"}};
    Ptr<kivui::UI_MultiColumnTreeRow> parent;
    for (int i = 0; i < 5; ++i) {
        bool const top = i == 0 || i == 3;
        auto row = tree->AppendRow(top ? Ptr<kivui::UI_MultiColumnTreeRow>() : parent);
        row->SetText(0, entries[i].a);
        row->SetText(1, entries[i].b);
        if (top) parent = row;
    }
    tree->OpenRow(tree->GetRow(0), true);
    tree->OpenRow(tree->GetRow(1), true);
    tree->Layout();
    Save(QStringLiteral("views"), page.Finish());
}

void Gallery::DrawingAndImages()
{
    Page page(mSupplier);
    Ptr<DrawbotSample> sample(new DrawbotSample());
    page.Add(QStringLiteral("Drawbot"), sample, 400, 128);
    Save(QStringLiteral("drawbot"), page.Finish());
}

void Gallery::Dialogs()
{
    Ptr<SampleDialog> plain(new SampleDialog(mSupplier));
    plain->GetDialog()->show();
    Settle();
    Save(QStringLiteral("dialog_plain"), plain->GetDialog());
    plain->GetDialog()->hide();

    Ptr<kivui::UI_ArchivedDialog> archived(new kivui::UI_ArchivedDialog(mSupplier, mResources, "GalleryArchive"));
    if (!archived->HasArchive())
        mProblems << QStringLiteral("the gallery's UI archive is missing");
    else {
        auto versions = archived->FindControl<kivui::UI_Popup>("versionPopupID");
        versions->AddItem(u"Select Version...");
        versions->AddSeparator();
        for (char16_t const *item : {u"GY/GX6", u"GX5", u"GX4"})
            versions->AddItem(item);
        versions->SetValue(0);
        archived->FindControl<kivui::UI_TextButton>("startButtonID")->SetDisabled(true);
        archived->FindControl<kivui::UI_TextEdit_MS>("resultTextID")
            ->SetValue(u"Converted 3 panels:\n  Camera.xml\n  Location.xml\n  Rights.xml", false);
    }
    archived->GetDialog()->show();
    Settle();
    Save(QStringLiteral("dialog_archived"), archived->GetDialog());
    archived->GetDialog()->hide();

    Ptr<kivevefactory::UI_EveViewBase> eve(new kivevefactory::UI_EveViewBase(mSupplier, mResources, "GalleryLayout"));
    if (!eve->HasLayout())
        mProblems << QStringLiteral("the gallery's layout description is missing");
    else {
        auto name = eve->FindControl<kivui::UI_TextEdit>("nameTextEdit");
        name->SetValue(u"NewProperty", false);
        name->SelectAll();
        auto types = eve->FindControl<kivui::UI_Popup>("columnTypePopup");
        for (char16_t const *item : {u"Integer", u"Real", u"Text", u"Boolean"})
            types->AddItem(item);
        types->SetValue(0);
    }
    eve->GetDialog()->show();
    Settle();
    Save(QStringLiteral("dialog_eve"), eve->GetDialog());
    eve->GetDialog()->hide();
}

void Gallery::MessageBoxes()
{
    using kivui::dialogs::ScriptedResponses;
    QString next;
    ScriptedResponses::SetShownHook([this, &next](QWidget *dialog) {
        Settle();
        Save(next, dialog);
    });
    next = QStringLiteral("messagebox_confirmation");
    ScriptedResponses::PushCancel();
    kivui::dialogs::SimpleConfirmationBox(mSupplier, u"Delete Settings",
                                          u"Are you sure you want to delete the setting 'Basic'?", nullptr, u"&Delete");
    next = QStringLiteral("messagebox_error");
    ScriptedResponses::PushOk();
    kivui::dialogs::SimpleErrorMessageBox(mSupplier, u"Invalid Name",
                                          u"The name 'Basic' is already used. Please use a different name.");
    next = QStringLiteral("messagebox_stop");
    ScriptedResponses::PushOk();
    kivui::messagebox::ShowStop(mSupplier, u"Missing Property Name",
                                u"The property must have a name. Please enter a unique name");
    next = QStringLiteral("messagebox_input");
    ScriptedResponses::PushCancel();
    std::u16string text = u"Basic";
    kivui::dialogs::SimpleInputBox(mSupplier, u"Save Settings", u"Name:", text);
    ScriptedResponses::SetShownHook({});
}

} // namespace kivgallery
