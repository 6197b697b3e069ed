#include "catalog/DatabaseError.h"

namespace korvo {

DatabaseError DatabaseError::open(const std::string& message, int code)
{
    return {Case::open, message, {}, code, "Couldn't open library: " + message};
}

DatabaseError DatabaseError::prepare(const std::string& message, const std::string& sql, int code)
{
    return {Case::prepare, message, sql, code, "Catalog error: " + message + " [" + sql + "]"};
}

DatabaseError DatabaseError::step(const std::string& message, const std::string& sql, int code)
{
    return {Case::step, message, sql, code, "Catalog error: " + message + " [" + sql + "]"};
}

} // namespace korvo
