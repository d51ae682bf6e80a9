#include <kivcore/Exceptions.h>

#include <kivcore/Localizer.h>

namespace kivcore::config {

NullPtrException::NullPtrException(std::string typeName)
    : std::runtime_error("null pointer: expected an object of type " + typeName), mTypeName(std::move(typeName))
{
}

ErrorException::ErrorException(std::string key, int level)
    : std::runtime_error(std::string(Localizer::DefaultOf(key))), mKey(std::move(key)), mLevel(level)
{
}

std::u16string ErrorException::LocalizedMessage() const
{
    return Localizer::Localize(mKey);
}

void DoThrowNullPtrException(char const *typeName)
{
    throw NullPtrException(typeName ? typeName : "");
}

void DoThrowError(char const *key, int level)
{
    throw ErrorException(key ? key : "", level);
}

} // namespace kivcore::config
