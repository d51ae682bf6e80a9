#pragma once

#include <kivcore/kivcore_export.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace kivcore::utility {

// Base of intrusively reference-counted objects. The object is deleted when
// its last IntrusivePtr lets go. A fresh object has count 0.
class KIVCORE_EXPORT RefCountedInterface {
public:
    template <typename T> class IntrusivePtr;

    void AddRef() const noexcept { mRefCount.fetch_add(1, std::memory_order_relaxed); }
    void Release() const noexcept
    {
        if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    int RefCount() const noexcept { return mRefCount.load(std::memory_order_relaxed); }

protected:
    RefCountedInterface() = default;
    RefCountedInterface(RefCountedInterface const &) noexcept {}
    RefCountedInterface &operator=(RefCountedInterface const &) noexcept { return *this; }
    virtual ~RefCountedInterface();

private:
    mutable std::atomic<int> mRefCount{0};
};

template <typename T> class RefCountedInterface::IntrusivePtr {
public:
    using element_type = T;

    IntrusivePtr() noexcept = default;
    IntrusivePtr(std::nullptr_t) noexcept {}
    IntrusivePtr(T *p) noexcept : mPtr(p)
    {
        if (mPtr) mPtr->AddRef();
    }
    IntrusivePtr(IntrusivePtr const &o) noexcept : IntrusivePtr(o.mPtr) {}
    IntrusivePtr(IntrusivePtr &&o) noexcept : mPtr(std::exchange(o.mPtr, nullptr)) {}
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    IntrusivePtr(IntrusivePtr<U> const &o) noexcept : IntrusivePtr(o.get())
    {
    }
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    IntrusivePtr(IntrusivePtr<U> &&o) noexcept : mPtr(o.detach())
    {
    }
    ~IntrusivePtr()
    {
        if (mPtr) mPtr->Release();
    }

    IntrusivePtr &operator=(IntrusivePtr o) noexcept
    {
        std::swap(mPtr, o.mPtr);
        return *this;
    }

    T *get() const noexcept { return mPtr; }
    T *operator->() const noexcept { return mPtr; }
    T &operator*() const noexcept { return *mPtr; }
    explicit operator bool() const noexcept { return mPtr != nullptr; }
    void reset() noexcept { IntrusivePtr().swap(*this); }
    void swap(IntrusivePtr &o) noexcept { std::swap(mPtr, o.mPtr); }
    // Gives up ownership without releasing.
    T *detach() noexcept { return std::exchange(mPtr, nullptr); }

    friend bool operator==(IntrusivePtr const &a, IntrusivePtr const &b) noexcept { return a.mPtr == b.mPtr; }
    friend bool operator==(IntrusivePtr const &a, std::nullptr_t) noexcept { return a.mPtr == nullptr; }
    friend bool operator<(IntrusivePtr const &a, IntrusivePtr const &b) noexcept { return a.mPtr < b.mPtr; }

private:
    T *mPtr = nullptr;
};

template <typename T> using IntrusivePtr = RefCountedInterface::IntrusivePtr<T>;

template <typename T, typename... Args> IntrusivePtr<T> MakeIntrusive(Args &&...args)
{
    return IntrusivePtr<T>(new T(std::forward<Args>(args)...));
}

// dynamic_cast for intrusive pointers; null when the object is not a T.
template <typename T, typename U> IntrusivePtr<T> IntrusivePtrCast(IntrusivePtr<U> const &p) noexcept
{
    return IntrusivePtr<T>(dynamic_cast<T *>(p.get()));
}

} // namespace kivcore::utility

template <typename T> struct std::hash<kivcore::utility::IntrusivePtr<T>> {
    std::size_t operator()(kivcore::utility::IntrusivePtr<T> const &p) const noexcept
    {
        return std::hash<T *>()(p.get());
    }
};
