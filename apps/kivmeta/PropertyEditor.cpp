#include "PropertyEditor.h"

#include "MetadataDump.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>
#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/ControlKind.h>
#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivmetadataui/UI_DateTextEdit.h>

#include <kivcore/Localizer.h>
#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_URLEdit.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QTextStream>

#include <atomic>
#include <cmath>
#include <functional>
#include <mutex>
#include <thread>
#include <type_traits>

#include <unistd.h>

namespace kivmeta {

using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadata::PrimitiveType;

namespace {

QString Q(std::string const &s)
{
    return QString::fromStdString(s);
}
QString Q(std::u16string const &s)
{
    return QString::fromStdU16String(s);
}

// What the model recorded since `mark`, as one readable reason.
QString NewErrorText(std::size_t mark)
{
    std::vector<kivmetadata::ErrorInfo> const infos = kivmetadata::GetErrorInfos();
    QStringList parts;
    for (std::size_t i = mark; i < infos.size(); ++i)
        parts << Q(infos[i].mDescription);
    return parts.join(QStringLiteral("; "));
}

std::optional<bool> ParseBoolean(QString const &text)
{
    QString t = text.trimmed().toLower();
    if (t == u"true" || t == u"yes" || t == u"on" || t == u"1") return true;
    if (t == u"false" || t == u"no" || t == u"off" || t == u"0") return false;
    return std::nullopt;
}

QStringList SplitItems(QString const &text)
{
    QStringList items;
    for (QString const &item : text.split(u';')) {
        QString trimmed = item.trimmed();
        if (!trimmed.isEmpty()) items << trimmed;
    }
    return items;
}

QString ChoiceList(kivmetadata::PropertyDefinition const &definition)
{
    QStringList raw;
    for (kivmetadata::Choice const &choice : definition.mChoices) {
        QString display = Q(kivcore::config::Localizer::Localize(choice.mDisplay));
        QString const value = Q(choice.mRawValue);
        // Displays often start with the value already: "1 (High)".
        raw << (display.isEmpty() || display.startsWith(value) ? (display.isEmpty() ? value : display)
                                                               : QStringLiteral("%1 (%2)").arg(value, display));
    }
    return raw.join(QStringLiteral(", "));
}

// Whether what reads back is what the edit asked for, so that a value that a
// binding silently dropped is reported instead of passing as written.
bool ReadsBackAs(kivmetadata::Value const &value, PrimitiveType type, bool isDate, QString const &expected)
{
    std::string text;
    kivmetadata::GetValueResult result{};
    if (!kivmetadata::GetValue(value, text, result)) return false;
    QString const actual = Q(text);
    if (isDate) {
        // Stored in ISO 8601, typed in any form the date edit reads.
        kivmetadata::XMP_DateTime a{}, b{};
        return kivmetadataui::ParseDateTimeStr(actual.toStdU16String(), a) &&
               kivmetadataui::ParseDateTimeStr(expected.toStdU16String(), b) &&
               kivmetadataui::FormatDateTimeStr(a) == kivmetadataui::FormatDateTimeStr(b);
    }
    switch (type) {
    case kivmetadata::kPrimitiveType_Integer:
    case kivmetadata::kPrimitiveType_Real: {
        bool okA = false, okB = false;
        double a = actual.toDouble(&okA), b = expected.trimmed().toDouble(&okB);
        return okA && okB && std::abs(a - b) <= 1e-9 * std::max(1.0, std::abs(b));
    }
    case kivmetadata::kPrimitiveType_Boolean:
        return ParseBoolean(actual) == ParseBoolean(expected);
    case kivmetadata::kPrimitiveType_TextBag:
    case kivmetadata::kPrimitiveType_TextSeq:
        return SplitItems(actual) == SplitItems(expected);
    default:
        return actual == expected || actual == expected.trimmed();
    }
}

bool PropertyExists(kivmetadata::Value const &value)
{
    std::string text;
    kivmetadata::GetValueResult result{};
    kivmetadata::GetValue(value, text, result);
    return result == kivmetadata::kGetValueResult_OneValue || result == kivmetadata::kGetValueResult_SeveralValues;
}

template <typename... Functions> struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <typename... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

// Puts the edit into the control the factory made and lets its binding write
// it. Returns false with a reason when the control cannot take the value.
bool FeedControl(kivmetadata::Value const &value, kivmetadataui::Control const &control,
                 kivmetadata::PropertyDefinition const &definition, PrimitiveType type, PropertyEdit const &edit,
                 QString &expected, QString &error)
{
    expected = edit.mValue;
    bool const remove = edit.mKind == PropertyEdit::Kind::Delete;
    std::u16string const text = remove ? std::u16string() : edit.mValue.toStdU16String();
    auto *view = dynamic_cast<kivui::UI_ControlView *>(control.GetView().get());
    // Each kind takes the edit its own way, then writes through the binding.
    auto write = [&value](auto *concrete) {
        kivmetadataui::UpdateValue(value, IntrusivePtr<std::remove_pointer_t<decltype(concrete)>>(concrete));
        return true;
    };
    bool fed = false;
    bool const known = kivmetadataui::VisitControl(
        view,
        Overloaded{
            [&](kivui::UI_StaticText *) { error = QStringLiteral("is read-only here"); },
            [&](kivmetadataui::UI_DateTextEdit *date) {
                kivmetadata::XMP_DateTime parsed{};
                if (!remove && !kivmetadataui::ParseDateTimeStr(text, parsed)) {
                    error = QStringLiteral("\"%1\" is not a date (use YYYY-MM-DD, optionally with a time "
                                           "HH:MM[:SS] and a zone)")
                                .arg(edit.mValue);
                    return;
                }
                date->SetValue(remove ? std::u16string() : kivmetadataui::FormatDateTimeStr(parsed));
                fed = write(date);
            },
            [&](kivui::UI_Checkbox *box) {
                if (remove) {
                    box->SetValueUnknown(true);
                } else {
                    std::optional<bool> checked = ParseBoolean(edit.mValue);
                    if (!checked) {
                        error = QStringLiteral("\"%1\" is not a boolean (use True or False)").arg(edit.mValue);
                        return;
                    }
                    box->SetValue(*checked ? kivui::UI_Checkbox::kChecked : kivui::UI_Checkbox::kUnchecked);
                }
                fed = write(box);
            },
            [&](kivui::UI_HotTextNumber *number) {
                if (remove) {
                    number->SetValue(std::nan(""));
                    fed = write(number);
                    return;
                }
                bool ok = false;
                double d = edit.mValue.trimmed().toDouble(&ok);
                if (!ok || !std::isfinite(d)) {
                    error = QStringLiteral("\"%1\" is not a number").arg(edit.mValue);
                } else if (type == kivmetadata::kPrimitiveType_Integer && d != std::floor(d)) {
                    error = QStringLiteral("\"%1\" is not a whole number").arg(edit.mValue);
                } else if ((definition.mMinimum && d < *definition.mMinimum) ||
                           (definition.mMaximum && d > *definition.mMaximum)) {
                    error =
                        QStringLiteral("%1 is outside the range %2 to %3")
                            .arg(edit.mValue.trimmed())
                            .arg(definition.mMinimum ? QString::number(*definition.mMinimum) : QStringLiteral("any"))
                            .arg(definition.mMaximum ? QString::number(*definition.mMaximum) : QStringLiteral("any"));
                } else {
                    number->SetValue(d);
                    fed = write(number);
                }
            },
            [&](kivui::UI_StarRating *stars) {
                double d = 0;
                if (!remove) {
                    bool ok = false;
                    d = edit.mValue.trimmed().toDouble(&ok);
                    if (!ok || d < 0 || d > 5 || d != std::floor(d)) {
                        error = QStringLiteral("\"%1\" is not a rating (a whole number of stars from 0 to 5)")
                                    .arg(edit.mValue);
                        return;
                    }
                }
                stars->SetValue(d);
                fed = write(stars);
            },
            [&](kivui::UI_Popup *popup) {
                if (remove) {
                    popup->SetValueUnknown(true);
                    fed = write(popup);
                    return;
                }
                // The raw value first ("3"), then the text shown ("3 (Normal)").
                QString const wanted = edit.mValue.trimmed();
                int found = popup->FindItemByData(wanted.toStdString());
                for (int i = 0; i < popup->CountItems() && found < 0; ++i) {
                    QString const shown = Q(popup->GetItemText(i)).trimmed();
                    if (shown.compare(wanted, Qt::CaseInsensitive) == 0 ||
                        shown.endsWith(u'(' + wanted + u')', Qt::CaseInsensitive))
                        found = i;
                }
                if (found >= 0) {
                    popup->SetValue(found);
                    expected = QString::fromStdString(popup->GetItemData(found).value_or(wanted.toStdString()));
                } else if (popup->GetPopupType() == kivui::UI_Popup::kPopupTypeEditable) {
                    popup->SetValueString(edit.mValue.toStdU16String());
                } else {
                    error =
                        QStringLiteral("\"%1\" is not one of the choices: %2").arg(edit.mValue, ChoiceList(definition));
                    return;
                }
                fed = write(popup);
            },
            // The plain, auto-complete, URL and draggable text edits.
            [&](auto *textEdit) {
                if (!remove) {
                    if (std::optional<std::u16string> warning = textEdit->ValidateText(text)) {
                        error = Q(*warning);
                        return;
                    }
                }
                textEdit->SetValue(text, false);
                fed = write(textEdit);
            },
        });
    if (!known) error = QStringLiteral("has no control that can edit it");
    return fed;
}

} // namespace

std::optional<Path> ResolvePropertyName(QString const &name, QString &error)
{
    static QRegularExpression const part(QStringLiteral(R"(^([A-Za-z_][\w.\-]*):([A-Za-z_][\w.\-]*)((?:\[\d+\])?)$)"));
    Path path;
    QStringList converted;
    for (QString const &step : name.split(u'/')) {
        QRegularExpressionMatch m = part.match(step);
        if (!m.hasMatch()) {
            error = QStringLiteral("\"%1\" is not a property name (PREFIX:Name)").arg(name);
            return std::nullopt;
        }
        std::string const prefix = m.captured(1).toStdString();
        std::shared_ptr<kivmetadata::SchemaDefinition> schema = kivmetadata::SchemaDefinitionForPrefix(prefix);
        std::string ns = schema ? schema->mNamespace : kivmetadata::XMPMeta::NamespaceForPrefix(prefix);
        if (ns.empty()) {
            error = QStringLiteral("unknown prefix \"%1\" in %2").arg(m.captured(1), name);
            return std::nullopt;
        }
        if (path.mNamespace.empty()) path.mNamespace = ns;
        std::string toolkitPrefix = kivmetadata::XMPMeta::PrefixForNamespace(ns);
        if (toolkitPrefix.empty()) toolkitPrefix = prefix;
        converted << Q(toolkitPrefix) + u':' + m.captured(2) + m.captured(3);
    }
    path.mPath = converted.join(u'/').toStdString();
    if (!kivmetadata::PathEntryDefinition(path)) {
        error = QStringLiteral("%1 is not a known property").arg(name);
        return std::nullopt;
    }
    return path;
}

bool ApplyEdit(std::shared_ptr<kivmetadata::MetaDataProvider> const &provider, kivui::UI_SubView *parent,
               PropertyEdit const &edit, QString &error)
{
    std::optional<Path> path = ResolvePropertyName(edit.mProperty, error);
    if (!path) return false;
    kivmetadata::Value const value{false, *path, provider};
    std::shared_ptr<kivmetadata::PropertyDefinition> definition = kivmetadata::PathEntryDefinition(*path);
    std::optional<PrimitiveType> type = kivmetadata::PrimitiveTypeOfPath(*path);
    bool const remove = edit.mKind == PropertyEdit::Kind::Delete;
    std::size_t const mark = kivmetadata::GetErrorInfos().size();

    if (!type) {
        // Structs and arrays of structs have no control of their own: they
        // can only be removed as a whole; their fields are set one by one.
        if (!remove) {
            error = QStringLiteral("%1 is a structure: set its fields, e.g. %1/PREFIX:Field=VALUE").arg(edit.mProperty);
            return false;
        }
        kivmetadata::MetaDataUpdateAccess access(provider);
        if (kivmetadata::DeleteValue(value)) access.AddChange(*path);
        return true;
    }
    if (!provider->AcceptsPath(value, true)) {
        error = QStringLiteral("%1 cannot be written").arg(edit.mProperty);
        return false;
    }

    IntrusivePtr<kivui::UI_Node> parentNode(parent);
    std::shared_ptr<kivmetadataui::Control> control =
        kivmetadataui::ControlFactory(value, parentNode, false, nullptr, nullptr);
    if (!control || !control->GetView()) {
        error = QStringLiteral("%1 has no control that can edit it").arg(edit.mProperty);
        return false;
    }
    QString reason, expected;
    bool fed = FeedControl(value, *control, *definition, *type, edit, expected, reason);
    control.reset();
    if (!fed) {
        bool const clause = reason.startsWith(QStringLiteral("is ")) || reason.startsWith(QStringLiteral("has "));
        error = clause ? QStringLiteral("%1 %2").arg(edit.mProperty, reason)
                       : QStringLiteral("%1: %2").arg(edit.mProperty, reason);
        return false;
    }

    if (remove) {
        if (PropertyExists(value)) {
            kivmetadata::MetaDataUpdateAccess access(provider);
            if (kivmetadata::DeleteValue(value)) access.AddChange(*path);
        }
        return true;
    }
    if (!ReadsBackAs(value, *type, definition->mTypeId == "date", expected)) {
        QString model = NewErrorText(mark);
        error = QStringLiteral("%1: the value \"%2\" was refused%3")
                    .arg(edit.mProperty, edit.mValue, model.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(model));
        return false;
    }
    return true;
}

namespace {

// Runs `work(i)` for i in [0, count) on every core; `done` is called on the
// calling thread's behalf after each item, under a lock.
void ForEachInParallel(std::size_t count, std::function<void(std::size_t)> const &work,
                       std::function<void(std::size_t)> const &done)
{
    std::atomic<std::size_t> next{0};
    std::mutex lock;
    std::size_t finished = 0;
    auto worker = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            work(i);
            std::lock_guard guard(lock);
            done(++finished);
        }
    };
    std::size_t const threads = std::min<std::size_t>(count, std::max(1u, std::thread::hardware_concurrency()));
    std::vector<std::thread> pool;
    for (std::size_t t = 1; t < threads; ++t)
        pool.emplace_back(worker);
    worker();
    for (auto &thread : pool)
        thread.join();
}

// A progress line that rewrites itself on a terminal and says nothing
// otherwise.
class Progress {
public:
    Progress(QTextStream &err, QString verb, std::size_t total)
        : mErr(err), mVerb(std::move(verb)), mTotal(total), mShown(total > 1 && ::isatty(STDERR_FILENO))
    {
    }
    void Update(std::size_t done)
    {
        if (!mShown) return;
        mErr << "\rkivmeta: " << mVerb << ' ' << done << " of " << mTotal << " files" << Qt::flush;
    }
    void Finish()
    {
        if (mShown) mErr << '\n' << Qt::flush;
    }

private:
    QTextStream &mErr;
    QString mVerb;
    std::size_t mTotal;
    bool mShown;
};

} // namespace

int RunEdits(QStringList const &files, std::vector<PropertyEdit> const &edits, bool sidecar, QTextStream &err,
             QTextStream &out)
{
    // Resolve every name first: a typo must not leave some files edited.
    for (PropertyEdit const &edit : edits) {
        QString error;
        if (!ResolvePropertyName(edit.mProperty, error)) {
            err << "kivmeta: " << error << ". No file was changed.\n";
            return 1;
        }
    }

    std::size_t const count = std::size_t(files.size());
    std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> opened(count);
    std::vector<QString> refused(count);
    kivmetadata::FileOpenOptions options;
    options.mImportLegacy = false; // only the edited properties matter here
    options.mUseSidecar = sidecar;
    {
        Progress progress(err, QStringLiteral("read"), count);
        ForEachInParallel(
            count,
            [&](std::size_t i) {
                std::string openError;
                auto provider =
                    kivmetadata::FileMetaDataProvider::Open(files[qsizetype(i)].toStdU16String(), &openError, options);
                if (!provider) {
                    refused[i] = Q(openError);
                } else if (!provider->IsWritable()) {
                    refused[i] = Q(provider->ReadOnlyReason());
                } else if (QString reason = kivmetadataui::MetadataDialog::WriteRefusalReason(*provider);
                           !reason.isEmpty()) {
                    refused[i] = reason;
                } else {
                    opened[i] = std::move(provider);
                }
            },
            [&](std::size_t done) { progress.Update(done); });
        progress.Finish();
    }

    std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> assets;
    for (auto const &provider : opened)
        if (provider) assets.push_back(provider);
    if (!assets.empty()) {
        std::shared_ptr<kivmetadata::MetaDataProvider> target =
            assets.size() == 1 ? assets.front() : std::make_shared<kivmetadata::MultiMetaDataProvider>(assets);
        IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView());
        for (PropertyEdit const &edit : edits) {
            QString error;
            if (!ApplyEdit(target, parent.get(), edit, error)) {
                err << "kivmeta: " << error << ". No file was changed.\n";
                return 1;
            }
        }
        Progress progress(err, QStringLiteral("saved"), count);
        ForEachInParallel(
            count,
            [&](std::size_t i) {
                if (!opened[i]) return;
                std::string saveError;
                if (!opened[i]->Save(&saveError)) refused[i] = Q(saveError);
            },
            [&](std::size_t done) { progress.Update(done); });
        progress.Finish();
    }

    int status = 0;
    std::size_t failures = 0;
    for (std::size_t i = 0; i < count; ++i) {
        QString const &file = files[qsizetype(i)];
        if (opened[i] && refused[i].isEmpty()) {
            for (std::string const &notice : opened[i]->SaveNotices())
                err << "kivmeta: " << file << ": " << Q(notice) << '\n';
            if (!opened[i]->SidecarPath().empty()) out << "kivmeta: wrote " << Q(opened[i]->SidecarPath()) << '\n';
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (refused[i].isEmpty()) continue;
        QString reason = refused[i];
        while (reason.endsWith(u'.'))
            reason.chop(1);
        if (!reason.isEmpty()) reason[0] = reason[0].toLower();
        // The model's own messages already say so.
        if (!reason.contains(QStringLiteral("left as it was")))
            reason += QStringLiteral(". The file was left as it was");
        err << "kivmeta: cannot write " << files[qsizetype(i)] << ": " << reason << ".\n";
        ++failures;
        status = 1;
    }
    if (failures && count > 1) err << "kivmeta: " << failures << " of " << count << " files were not changed.\n";
    out.flush();
    return status;
}

int RunDumps(QStringList const &files, QTextStream &out, QTextStream &err)
{
    int status = 0;
    for (QString const &file : files) {
        std::string openError;
        auto provider = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String(), &openError);
        if (!provider) {
            err << "kivmeta: cannot open " << file << ": " << Q(openError) << "\n";
            status = 1;
            continue;
        }
        if (!provider->IsWritable()) {
            err << "kivmeta: " << file << " is read-only: " << Q(provider->ReadOnlyReason()) << "\n";
            if (!provider->IsComplete()) status = 1;
        }
        if (files.size() > 1) out << "==> " << file << " <==\n";
        kivmetadata::MetaDataReadAccess access(provider);
        if (kivmetadata::XMPMeta const *meta = access.GetMeta()) {
            for (QString const &line : DumpLines(*meta))
                out << line << '\n';
        }
    }
    out.flush();
    return status;
}

} // namespace kivmeta
