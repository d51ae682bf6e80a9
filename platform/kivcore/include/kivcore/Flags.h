#pragma once

#include <type_traits>

namespace kivcore {

// A set of bit flags held in an integral or enumeration type T.
template <typename T> class Flags {
    using Bits = std::conditional_t<std::is_enum_v<T>, std::underlying_type<T>, std::type_identity<T>>;

public:
    using value_type = typename Bits::type;

    constexpr Flags() noexcept = default;
    constexpr Flags(T value) noexcept : mValue(static_cast<value_type>(value)) {}
    template <typename U, typename = std::enable_if_t<std::is_integral_v<U> && !std::is_same_v<U, T>>>
    constexpr explicit Flags(U value) noexcept : mValue(static_cast<value_type>(value))
    {
    }

    constexpr value_type Value() const noexcept { return mValue; }
    constexpr bool IsSet(value_type bits) const noexcept { return (mValue & bits) == bits && bits != 0; }
    constexpr bool Any(value_type bits) const noexcept { return (mValue & bits) != 0; }
    constexpr bool IsEmpty() const noexcept { return mValue == 0; }
    constexpr Flags &Set(value_type bits, bool on = true) noexcept
    {
        mValue = on ? static_cast<value_type>(mValue | bits) : static_cast<value_type>(mValue & ~bits);
        return *this;
    }
    constexpr Flags &Clear(value_type bits) noexcept { return Set(bits, false); }

    constexpr Flags operator|(Flags o) const noexcept { return Flags(static_cast<value_type>(mValue | o.mValue), 0); }
    constexpr Flags operator&(Flags o) const noexcept { return Flags(static_cast<value_type>(mValue & o.mValue), 0); }
    constexpr Flags &operator|=(Flags o) noexcept
    {
        mValue = static_cast<value_type>(mValue | o.mValue);
        return *this;
    }
    constexpr Flags &operator&=(Flags o) noexcept
    {
        mValue = static_cast<value_type>(mValue & o.mValue);
        return *this;
    }
    friend constexpr bool operator==(Flags a, Flags b) noexcept { return a.mValue == b.mValue; }

private:
    constexpr Flags(value_type raw, int) noexcept : mValue(raw) {}
    value_type mValue = 0;
};

} // namespace kivcore
