#include "http/LiveClient.h"

#include <boost/asio/co_spawn.hpp>

#include "api/JsonRpc.h"
#include "http/Limits.h"
#include "model/Fault.h"

namespace hub::http {

namespace asio = boost::asio;

LiveClient::LiveClient(Live& live, std::shared_ptr<Stream> stream, access::Caller caller)
    : live_(live),
      socket_(std::make_shared<WebSocket>(stream)),
      caller_(std::move(caller)),
      clock_(stream->Clock()),
      pinged_(clock_.Steady()),
      news_(stream->get_executor()),
      room_(stream->get_executor()) {
  caller_.door = access::Door::kWebSocket;
  stream->KeepOutputSmall(kKernelBytes);
}

asio::awaitable<void> LiveClient::Run(Request request) {
  auto accepting = socket_->Accept(std::move(request));
  const bool accepted = co_await std::move(accepting);
  if (!accepted || is_over_) co_return socket_->Cut();
  is_open_ = true;
  ++workers_;
  asio::co_spawn(live_.House().context, Write(shared_from_this()), model::EndOnFault{});
  co_await Read();
  is_over_ = true;
  news_.Raise();
  while (workers_ > 0) co_await room_.Wait();
}

asio::awaitable<void> LiveClient::Read() {
  for (;;) {
    while (!HasRoom() && !is_over_) co_await room_.Wait();
    std::optional<std::string> text = co_await socket_->Read();
    if (!text || is_over_) co_return;
    if (!may_ask_) continue;  // the close waits for what is being written
    ++workers_;
    ++under_way_;
    asio::co_spawn(live_.House().context, Answer(shared_from_this(), std::move(*text)),
                   model::EndOnFault{});
  }
}

bool LiveClient::HasRoom() const {
  return under_way_ < kMostUnderWay && writing_bytes_ + reply_bytes_ < kReplyBytesToPause;
}

asio::awaitable<void> LiveClient::Answer(Self self, std::string text) {
  auto answering = api::AnswerRpc(self->live_.House(), self->caller_, std::move(text));
  api::RpcAnswer answer = co_await std::move(answering);
  ++self->live_.Count().calls;
  if (answer.live_after) self->told_ = answer.live_after;
  if (answer.text.empty())
    --self->under_way_;
  else
    self->Queue(std::move(answer.text));
  --self->workers_;
  self->news_.Raise();
  self->room_.Raise();
}

void LiveClient::Queue(std::string text) {
  if (is_cut_) return;
  const bool is_next = replies_.empty() && writing_bytes_ < kReplyBytesToPause;
  if (!is_next && reply_bytes_ + text.size() > kReplyBytesToEnd) {
    is_cut_ = true;
    ++live_.Count().cut;
    return socket_->Close(CloseCode::kTooSlow, "too slow to take its answers");
  }
  reply_bytes_ += text.size();
  replies_.push_back(std::make_shared<const std::string>(std::move(text)));
}

// Answers first: a subscription begins with one.
SharedText LiveClient::Next() {
  if (!replies_.empty()) {
    SharedText text = std::move(replies_.front());
    replies_.pop_front();
    reply_bytes_ -= text->size();
    writing_bytes_ = text->size();
    --under_way_;
    return text;
  }
  if (!told_ || !live_.HasNews(*told_)) return nullptr;
  auto [text, told] = live_.NewsAfter(*told_);
  told_ = told;
  return text;
}

asio::awaitable<void> LiveClient::Write(Self self) {
  while (!self->is_over_) {
    const SharedText text = self->Next();
    if (!text) {
      co_await self->news_.Wait();
      continue;
    }
    self->writes_until_ = self->clock_.Steady() + kSilentTime;
    const bool went = co_await self->socket_->Write(*text);
    self->writes_until_ = model::SteadyTime::max();
    self->writing_bytes_ = 0;
    self->room_.Raise();
    if (!went) self->is_over_ = true;
  }
  self->socket_->Cut();
  --self->workers_;
  self->room_.Raise();
}

void LiveClient::PingWhenDue() {
  if (clock_.Steady() >= writes_until_) return socket_->Cut();
  if (!is_open_ || clock_.Steady() - pinged_ < kPingTime) return;
  pinged_ = clock_.Steady();
  socket_->Ping();
  if (!caller_.session.empty()) live_.House().access.NoteUse(caller_.session);
}

// Before the handshake there is nobody to hear why.
void LiveClient::End(std::string_view reason) {
  may_ask_ = false;
  if (is_open_)
    socket_->Close(CloseCode::kNotAllowed, reason);
  else
    is_over_ = true;
}

}  // namespace hub::http
