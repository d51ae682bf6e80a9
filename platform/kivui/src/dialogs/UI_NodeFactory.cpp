#include <kivui/UI_NodeFactory.h>

#include <kivui/UI_Node.h>

#include "dialogs/BuiltinNodeFactories_p.h"

#include <map>

namespace kivui {

namespace {

struct Entry {
    UI_NodeFactory::Creator creator;
    UI_NodeFactory::TextSetter textSetter;
};

std::map<std::string, Entry> &Entries()
{
    static std::map<std::string, Entry> entries;
    return entries;
}

std::map<std::string, Entry> &Registry()
{
    // The flag is set first: registering the built-in controls comes back here.
    static bool builtinsDone = false;
    if (!builtinsDone) {
        builtinsDone = true;
        detail::RegisterBuiltinNodeFactories();
    }
    return Entries();
}

} // namespace

void UI_NodeFactory::Register(std::string const &className, Creator creator, TextSetter textSetter)
{
    Registry()[className] = Entry{std::move(creator), std::move(textSetter)};
}

bool UI_NodeFactory::IsRegistered(std::string const &className)
{
    auto const &registry = Registry();
    return registry.find(className) != registry.end();
}

kivcore::utility::IntrusivePtr<UI_Node> UI_NodeFactory::Create(std::string const &className,
                                                               drawbot::SupplierInterface *supplier)
{
    auto const &registry = Registry();
    auto const it = registry.find(className);
    if (it == registry.end() || !it->second.creator) return {};
    return it->second.creator(supplier);
}

bool UI_NodeFactory::SetText(std::string const &className, UI_Node &node, std::u16string const &text)
{
    auto const &registry = Registry();
    auto const it = registry.find(className);
    if (it == registry.end() || !it->second.textSetter) return false;
    it->second.textSetter(node, text);
    return true;
}

std::vector<std::string> UI_NodeFactory::RegisteredClassNames()
{
    std::vector<std::string> names;
    for (auto const &[name, entry] : Registry())
        names.push_back(name);
    return names;
}

} // namespace kivui
