#include "api/Refusals.h"

#include <array>
#include <string>

namespace hub::api {

namespace {

constexpr int kRetrySeconds = 1;

enum class Field { kNone, kName, kPassword, kRole };

struct Row {
  int status;
  Field field;
  std::string_view detail;
};

// By Refusal.
constexpr std::array<Row, 9> kRows{{
    {401, Field::kNone, "the name or the password is wrong"},
    {409, Field::kName, "the name is taken"},
    {404, Field::kName, "nobody has this name"},
    {409, Field::kNone, "the last admin would be gone"},
    {422, Field::kRole, "the first account has to be an admin"},
    {422, Field::kName, "a name has 1 to 32 letters, digits, \"-\", \"_\" and \".\""},
    {422, Field::kPassword, "a password has at least 8 characters"},
    {422, Field::kPassword, "a password has at most 1024 characters"},
    {429, Field::kNone, "too many passwords wait to be checked"},
}};

std::string_view NameOf(Field field, std::string_view name_field) {
  switch (field) {
    case Field::kNone:
      return "";
    case Field::kName:
      return name_field;
    case Field::kPassword:
      return "password";
    case Field::kRole:
      return "role";
  }
  return "";
}

}  // namespace

Problem ProblemOf(access::Refusal refusal, std::string_view name_field) {
  const Row& row = kRows[static_cast<size_t>(refusal)];
  Problem problem =
      ProblemOf(row.status, std::string(row.detail), std::string(NameOf(row.field, name_field)));
  if (row.status == 429) problem.retry_after = kRetrySeconds;
  return problem;
}

}  // namespace hub::api
