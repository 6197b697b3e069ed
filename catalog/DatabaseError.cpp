#include "catalog/DatabaseError.h"

namespace korvo {

DatabaseError DatabaseError::open(const std::string& message)
{
    return {Case::open, message, {}, "Couldn't open library: " + message};
}

DatabaseError DatabaseError::prepare(const std::string& message, const std::string& sql)
{
    return {Case::prepare, message, sql, "Catalog error: " + message + " [" + sql + "]"};
}

DatabaseError DatabaseError::step(const std::string& message, const std::string& sql)
{
    return {Case::step, message, sql, "Catalog error: " + message + " [" + sql + "]"};
}

} // namespace korvo
