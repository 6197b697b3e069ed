#include "base/JsonError.h"

namespace korvo {

JsonError::JsonError(Case which, std::string_view fault)
    : which_(which), fault_(fault), what_("The JSON text " + fault_ + ".")
{ }

void JsonError::within(std::string_view key)
{
    place(std::string(key));
}

void JsonError::within(std::size_t index)
{
    place(std::string("[").append(std::to_string(index)).append("]"));
}

void JsonError::place(std::string step)
{
    const bool joined = path_.empty() || path_.front() == '[';
    path_ = std::move(step) + (joined ? "" : ".") + path_;
    what_ = "“" + path_ + "” in the JSON text " + fault_ + ".";
}

} // namespace korvo
