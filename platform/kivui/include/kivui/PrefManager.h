#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/Geometry.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QString;

namespace kivui::utility {

// The preference store: typed values under string keys, kept with QSettings
// in the per-user configuration folder. There is no store until the host
// makes one (Create); toolkit code asks GetPrefManager() and does without
// preferences when it is null. A value of another type than asked for reads
// as absent.
class KIVUI_EXPORT PrefManager {
public:
    // Null until Create() or CreateAtPath().
    static PrefManager *GetPrefManager();
    // Makes the store of an organisation and application (replacing any other).
    static PrefManager *Create(QString const &organisation, QString const &application);
    // A store in an INI file at `filePath` (tests, portable installs).
    static PrefManager *CreateAtPath(QString const &filePath);
    // Writes pending values and removes the store.
    static void Destroy();

    ~PrefManager();
    PrefManager(PrefManager const &) = delete;
    PrefManager &operator=(PrefManager const &) = delete;

    bool HasKey(std::string const &key) const;
    void Remove(std::string const &key);

    std::optional<std::int64_t> GetInt(std::string const &key) const;
    void SetInt(std::string const &key, std::int64_t value);
    std::optional<double> GetDouble(std::string const &key) const;
    void SetDouble(std::string const &key, double value);
    std::optional<bool> GetBool(std::string const &key) const;
    void SetBool(std::string const &key, bool value);
    std::optional<std::u16string> GetString(std::string const &key) const;
    void SetString(std::string const &key, std::u16string const &value);

    // The saved screen rectangle of the window whose node identifier is
    // `nodeID`; a rectangle of size 0 by 0 when none was saved (or it was
    // unreadable), so callers test the width and height.
    kivcore::RectF GetWindowPositionAndSize(std::string const &nodeID) const;
    void SetWindowPositionAndSize(std::string const &nodeID, kivcore::RectF const &rect);

    // Writes pending changes; false (and the reason logged) when the store
    // cannot be written.
    bool Sync();
    QString FileName() const;

private:
    PrefManager();
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui::utility
