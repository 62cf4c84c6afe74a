#include "platform/ngn.h"

#include "link_queue.h"

using host::bytesOf;
using host::Fault;
using host::Link;
using host::Observer;

int writeNgnCmd(u16 id, i32, const void* data, u32 length, i32, i32, i32, i32) {
  host::told([=](Observer& observer) { observer.send(Link::ngn, 0, id, bytesOf(data, length)); });
  return host::sendResult(Fault::ngnSend, Link::ngn, 0, id);
}

int readNgnCmd(u16 id, i32, const void* request, u32 requestLen, void* response, u32* responseLen, i32, i32) {
  host::told([=](Observer& observer) { observer.ask(Link::ngn, 0, id, bytesOf(request, requestLen)); });
  return host::exchangeResult(Fault::ngnExchange, Link::ngn, 0, id, bytesOf(request, requestLen), response,
                              responseLen);
}

int send_ngn_voice_rtp_ip_by_slot(u16 slot) {
  host::told([=](Observer& observer) { observer.rtpIp(slot); });
  return host::sendResult(Fault::ngnSend, Link::ngn, slot, 0);
}
