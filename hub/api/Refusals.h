// What the accounts refuse, worded for the caller.
#pragma once

#include <string_view>

#include "access/Access.h"
#include "api/Problem.h"

namespace hub::api {

// `name_field` is the parameter that names the account or the token.
Problem ProblemOf(access::Refusal refusal, std::string_view name_field);

}  // namespace hub::api
