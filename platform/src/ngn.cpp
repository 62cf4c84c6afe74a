#include "platform/ngn.h"

#include "constants.h"
#include "host/links.h"
#include "link_queue.h"

using host::bytesOf;
using host::Fault;
using host::Link;
using host::Observer;

int writeNgnCmd(u16 id, i32 c0, const void* data, u32 length, i32 c1, i32 c2, i32 c3, i32 c4) {
  if (host::constantsDiffer(__func__, 0, {c0, c1, c2, c3, c4})) return -1;
  if (host::linksHeld()) return 0;
  host::told([=](Observer& observer) { observer.send(Link::ngn, 0, id, bytesOf(data, length)); });
  const int result = host::sendResult(Fault::ngnSend, Link::ngn, 0, id);
  host::passed({Link::ngn, 0, id, false, length, result, {}});
  return result;
}

int readNgnCmd(u16 id, i32 c0, const void* request, u32 requestLen, void* response, u32* responseLen, i32 c1, i32 c2) {
  if (host::constantsDiffer(__func__, 0, {c0, c1, c2})) return -1;
  if (host::linksHeld()) return -1;
  host::told([=](Observer& observer) { observer.ask(Link::ngn, 0, id, bytesOf(request, requestLen)); });
  const int result =
      host::exchangeResult(Fault::ngnExchange, Link::ngn, 0, id, bytesOf(request, requestLen), response, responseLen);
  host::passed({Link::ngn, 0, id, true, requestLen, result,
                responseLen != nullptr ? bytesOf(response, *responseLen) : host::Bytes()});
  return result;
}

int send_ngn_voice_rtp_ip_by_slot(u16 slot) {
  if (host::linksHeld()) return 0;
  host::told([=](Observer& observer) { observer.rtpIp(slot); });
  return host::sendResult(Fault::ngnSend, Link::ngn, slot, 0);
}
