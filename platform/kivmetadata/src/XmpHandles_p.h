// Private to kivmetadata: small RAII wrappers of Exempi handles. Exempi is
// never visible outside src/.
#pragma once

#include <exempi/xmp.h>

#include <string>

namespace kivmetadata::detail {

class XmpString {
public:
    XmpString() : mString(xmp_string_new()) {}
    ~XmpString() { xmp_string_free(mString); }
    XmpString(XmpString const &) = delete;
    XmpString &operator=(XmpString const &) = delete;
    operator XmpStringPtr() const { return mString; }
    char const *c_str() const { return xmp_string_cstr(mString); }
    std::string str() const { return std::string(xmp_string_cstr(mString), xmp_string_len(mString)); }

private:
    XmpStringPtr mString;
};

class XmpIterator {
public:
    explicit XmpIterator(XmpIteratorPtr it) : mIt(it) {}
    ~XmpIterator()
    {
        if (mIt) xmp_iterator_free(mIt);
    }
    XmpIterator(XmpIterator const &) = delete;
    XmpIterator &operator=(XmpIterator const &) = delete;
    explicit operator bool() const { return mIt != nullptr; }
    XmpIteratorPtr get() const { return mIt; }

private:
    XmpIteratorPtr mIt;
};

class XmpFile {
public:
    XmpFile() = default;
    explicit XmpFile(XmpFilePtr f) : mFile(f) {}
    ~XmpFile() { reset(); }
    XmpFile(XmpFile const &) = delete;
    XmpFile &operator=(XmpFile const &) = delete;
    XmpFilePtr get() const { return mFile; }
    explicit operator bool() const { return mFile != nullptr; }
    // Closes without writing.
    void reset()
    {
        if (mFile) {
            xmp_files_close(mFile, XMP_CLOSE_NOOPTION);
            xmp_files_free(mFile);
            mFile = nullptr;
        }
    }
    // Closes, writing with safe update when the file was opened for update;
    // false (with the toolkit's code in `code`) when the write failed.
    bool closeSafely(int &code)
    {
        bool ok = xmp_files_close(mFile, XMP_CLOSE_SAFEUPDATE);
        code = ok ? 0 : xmp_get_error();
        xmp_files_free(mFile);
        mFile = nullptr;
        return ok;
    }

private:
    XmpFilePtr mFile = nullptr;
};

// A readable text for an Exempi error code (Exempi itself only prints them).
std::string XmpErrorText(int code);

} // namespace kivmetadata::detail
