#include "commands/Command.h"

#include <iostream>

#include "base/Text.h"

namespace ctl {

std::string Words::operator[](const std::string& name) const {
  const auto found = values_.find(name);
  return found == values_.end() || found->second.empty() ? std::string() : found->second.front();
}

std::vector<std::string> Words::All(const std::string& name) const {
  const auto found = values_.find(name);
  return found == values_.end() ? std::vector<std::string>() : found->second;
}

bool Session::PrintedJson(const Reply& reply) const {
  if (json && !reply.text.empty()) std::cout << reply.text << std::endl;
  return json;
}

int Session::Tell(const Refusal& refusal) const {
  if (json && !refusal.Document().empty()) std::cout << refusal.Document() << std::endl;
  std::cerr << "qelmctl: " << Printable(refusal.what()) << '\n';
  return refusal.Status();
}

void Session::Print(const std::string& text) const { std::cout << text << std::flush; }

}  // namespace ctl
