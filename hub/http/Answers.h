// Answers that are the same wherever they are given.
#pragma once

#include <string>

#include "api/Problem.h"
#include "http/Message.h"

namespace hub::http {

Response Json(std::string text);
Response Refusal(const api::Problem& problem);  // a problem document
Response NotFound();

// To a request that could not even be read: 400, 413, 431.
Response MalformedAnswer(int status);

}  // namespace hub::http
