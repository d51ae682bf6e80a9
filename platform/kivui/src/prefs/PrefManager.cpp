#include <kivui/PrefManager.h>

#include <QLoggingCategory>
#include <QMetaType>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <cmath>

Q_LOGGING_CATEGORY(lcKivUiPrefs, "kiv.ui.prefs", QtFatalMsg)

namespace kivui::utility {

namespace {

std::unique_ptr<PrefManager> &Instance()
{
    static std::unique_ptr<PrefManager> instance;
    return instance;
}

QString Key(std::string const &key)
{
    return QString::fromStdString(key);
}

QString WindowKey(std::string const &nodeID)
{
    return QStringLiteral("windows/") + QString::fromStdString(nodeID);
}

// INI files store everything as text: a value written as an integer comes
// back as a string, so types are decided by what the text holds.
std::optional<std::int64_t> ToInt(QVariant const &v)
{
    if (!v.isValid()) return std::nullopt;
    if (v.typeId() == QMetaType::LongLong || v.typeId() == QMetaType::Int) return v.toLongLong();
    if (v.typeId() != QMetaType::QString) return std::nullopt;
    bool ok = false;
    qlonglong const n = v.toString().trimmed().toLongLong(&ok);
    return ok ? std::optional<std::int64_t>(n) : std::nullopt;
}

std::optional<double> ToDouble(QVariant const &v)
{
    if (!v.isValid()) return std::nullopt;
    if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float) return v.toDouble();
    if (v.typeId() == QMetaType::LongLong || v.typeId() == QMetaType::Int) return v.toDouble();
    if (v.typeId() != QMetaType::QString) return std::nullopt;
    bool ok = false;
    double const x = v.toString().trimmed().toDouble(&ok);
    return ok && std::isfinite(x) ? std::optional<double>(x) : std::nullopt;
}

} // namespace

struct PrefManager::Private {
    std::unique_ptr<QSettings> settings;
};

PrefManager::PrefManager() : d(std::make_unique<Private>()) {}

PrefManager::~PrefManager()
{
    if (d->settings) d->settings->sync();
}

PrefManager *PrefManager::GetPrefManager()
{
    return Instance().get();
}

PrefManager *PrefManager::Create(QString const &organisation, QString const &application)
{
    std::unique_ptr<PrefManager> manager(new PrefManager());
    manager->d->settings =
        std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, organisation, application);
    Instance() = std::move(manager);
    return Instance().get();
}

PrefManager *PrefManager::CreateAtPath(QString const &filePath)
{
    std::unique_ptr<PrefManager> manager(new PrefManager());
    manager->d->settings = std::make_unique<QSettings>(filePath, QSettings::IniFormat);
    Instance() = std::move(manager);
    return Instance().get();
}

void PrefManager::Destroy()
{
    Instance().reset();
}

bool PrefManager::HasKey(std::string const &key) const
{
    return d->settings->contains(Key(key));
}

void PrefManager::Remove(std::string const &key)
{
    d->settings->remove(Key(key));
}

std::optional<std::int64_t> PrefManager::GetInt(std::string const &key) const
{
    return ToInt(d->settings->value(Key(key)));
}

void PrefManager::SetInt(std::string const &key, std::int64_t value)
{
    d->settings->setValue(Key(key), QVariant::fromValue<qlonglong>(value));
}

std::optional<double> PrefManager::GetDouble(std::string const &key) const
{
    return ToDouble(d->settings->value(Key(key)));
}

void PrefManager::SetDouble(std::string const &key, double value)
{
    d->settings->setValue(Key(key), value);
}

std::optional<bool> PrefManager::GetBool(std::string const &key) const
{
    QVariant const v = d->settings->value(Key(key));
    if (!v.isValid()) return std::nullopt;
    if (v.typeId() == QMetaType::Bool) return v.toBool();
    QString const text = v.toString().trimmed().toLower();
    if (text == QLatin1String("true")) return true;
    if (text == QLatin1String("false")) return false;
    return std::nullopt;
}

void PrefManager::SetBool(std::string const &key, bool value)
{
    d->settings->setValue(Key(key), value);
}

std::optional<std::u16string> PrefManager::GetString(std::string const &key) const
{
    QVariant const v = d->settings->value(Key(key));
    if (!v.isValid() || !v.canConvert<QString>()) return std::nullopt;
    return v.toString().toStdU16String();
}

void PrefManager::SetString(std::string const &key, std::u16string const &value)
{
    d->settings->setValue(Key(key), QString::fromStdU16String(value));
}

kivcore::RectF PrefManager::GetWindowPositionAndSize(std::string const &nodeID) const
{
    // Stored as four numbers "x y width height"; anything else reads as none.
    QVariant const v = d->settings->value(WindowKey(nodeID));
    QStringList parts = v.typeId() == QMetaType::QStringList ? v.toStringList()
                                                             : v.toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (parts.size() != 4) return {};
    float numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        double const x = parts[i].trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(x)) return {};
        numbers[i] = static_cast<float>(x);
    }
    if (numbers[2] < 0 || numbers[3] < 0) return {};
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void PrefManager::SetWindowPositionAndSize(std::string const &nodeID, kivcore::RectF const &rect)
{
    QString const text = QStringLiteral("%1 %2 %3 %4").arg(rect.x).arg(rect.y).arg(rect.width).arg(rect.height);
    d->settings->setValue(WindowKey(nodeID), text);
}

bool PrefManager::Sync()
{
    d->settings->sync();
    if (d->settings->status() != QSettings::NoError) {
        qCWarning(lcKivUiPrefs) << "cannot write preferences" << d->settings->fileName() << d->settings->status();
        return false;
    }
    return true;
}

QString PrefManager::FileName() const
{
    return d->settings->fileName();
}

} // namespace kivui::utility
