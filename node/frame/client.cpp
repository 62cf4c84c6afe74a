#include "client.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "library.h"

namespace frame {

namespace {

constexpr oid kEntry[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 1, 1};
enum Column : oid { kFrame = 1, kFrameMore, kReply, kQuery, kAnswer, kAnswerLast };
constexpr std::size_t kDatagramPiece = 60000;
constexpr std::size_t kStreamPiece = 400000;

using Name = std::array<oid, std::size(kEntry) + 2>;
Name nameOf(Column column, u16 id) {
  Name name;
  std::ranges::copy(kEntry, name.begin());
  name[std::size(kEntry)] = column;
  name[std::size(kEntry) + 1] = id;
  return name;
}

struct FreePdu {
  void operator()(netsnmp_pdu* pdu) const { snmp_free_pdu(pdu); }
};
using Pdu = std::unique_ptr<netsnmp_pdu, FreePdu>;

void prepareLibrary() {
  setenv("MIBS", "", 1);
  snmp_disable_log();
  for (const int option : {NETSNMP_DS_LIB_DONT_READ_CONFIGS, NETSNMP_DS_LIB_DONT_PERSIST_STATE,
                           NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE})
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, option, 1);
  init_snmp("msan-frame");
}

struct Authentication {
  const char* name;
  const oid* protocol;
};

const oid* protocolOf(const std::string& name) {
  const Authentication known[] = {{"SHA", usmHMACSHA1AuthProtocol},
                                  {"SHA-256", usmHMAC192SHA256AuthProtocol},
                                  {"SHA-512", usmHMAC384SHA512AuthProtocol}};
  for (const Authentication& one : known)
    if (name == one.name) return one.protocol;
  throw ClientError("authentication is SHA, SHA-256 or SHA-512");
}

void makeKey(const netsnmp_session& session, const std::string& secret, u8* key, std::size_t* length) {
  if (generate_Ku(session.securityAuthProto, static_cast<u32>(session.securityAuthProtoLen),
                  reinterpret_cast<const u8*>(secret.data()), secret.size(), key, length) != SNMPERR_SUCCESS)
    throw ClientError("a secret needs at least 8 letters");
}

void useUser(netsnmp_session& session, const Access& access) {
  session.version = SNMP_VERSION_3;
  session.securityName = const_cast<char*>(access.user.c_str());
  session.securityNameLen = access.user.size();
  session.securityLevel = SNMP_SEC_LEVEL_AUTHPRIV;
  session.securityAuthProto = const_cast<oid*>(protocolOf(access.authentication));
  session.securityAuthProtoLen = USM_AUTH_PROTO_SHA_LEN;
  session.securityAuthKeyLen = USM_AUTH_KU_LEN;
  makeKey(session, access.authenticationSecret, session.securityAuthKey, &session.securityAuthKeyLen);
  session.securityPrivProto = const_cast<oid*>(usmAESPrivProtocol);
  session.securityPrivProtoLen = USM_PRIV_PROTO_AES_LEN;
  session.securityPrivKeyLen = USM_PRIV_KU_LEN;
  makeKey(session, access.privacySecret, session.securityPrivKey, &session.securityPrivKeyLen);
}

std::vector<u8> bytesOf(const netsnmp_variable_list* variable) {
  if (variable == nullptr || variable->type != ASN_OCTET_STR) throw ClientError("the node knows no such message");
  return {variable->val.string, variable->val.string + variable->val_len};
}

[[noreturn]] void refused(long status) {
  if (status == SNMP_ERR_NOCREATION || status == SNMP_ERR_NOSUCHNAME)
    throw ClientError("the node knows no such message");
  if (status == SNMP_ERR_TOOBIG) throw ClientError("the answer is too large for a datagram: ask over TCP");
  if (status == SNMP_ERR_NOACCESS || status == SNMP_ERR_AUTHORIZATIONERROR) throw ClientError("no access");
  throw ClientError(snmp_errstring(static_cast<int>(status)));
}

}  // namespace

struct Client::Session {
  void* handle = nullptr;
  std::size_t piece = 0;

  ~Session() {
    if (handle != nullptr) snmp_sess_close(handle);
    snmp_shutdown("msan-frame");
  }

  // The response; its status is evaluated by the caller.
  Pdu exchange(netsnmp_pdu* request) const {
    netsnmp_pdu* response = nullptr;
    const int status = snmp_sess_synch_response(handle, request, &response);
    Pdu owned(response);
    if (status == STAT_TIMEOUT) throw ClientError("no answer");
    if (status != STAT_SUCCESS || response == nullptr) {
      int libraryError = 0;
      int systemError = 0;
      char* words = nullptr;
      snmp_sess_error(handle, &systemError, &libraryError, &words);
      const std::string why = words != nullptr ? words : "no answer";
      std::free(words);
      throw ClientError(why);
    }
    return owned;
  }

  Pdu set(Column column, u16 id, const u8* bytes, std::size_t length) const {
    const Name name = nameOf(column, id);
    netsnmp_pdu* request = snmp_pdu_create(SNMP_MSG_SET);
    if (snmp_pdu_add_variable(request, name.data(), name.size(), ASN_OCTET_STR, bytes, length) == nullptr) {
      snmp_free_pdu(request);
      throw ClientError("the frame is too long");
    }
    return exchange(request);
  }

  Pdu get(u16 id, std::initializer_list<Column> columns) const {
    netsnmp_pdu* request = snmp_pdu_create(SNMP_MSG_GET);
    for (const Column column : columns) {
      const Name name = nameOf(column, id);
      snmp_add_null_var(request, name.data(), name.size());
    }
    Pdu response = exchange(request);
    if (response->errstat != SNMP_ERR_NOERROR) refused(response->errstat);
    return response;
  }
};

Client::Client(const Access& access) {
  prepareLibrary();
  session_ = std::make_unique<Session>();
  session_->piece = access.agent.starts_with("tcp") ? kStreamPiece : kDatagramPiece;
  if (access.piece != 0) session_->piece = access.piece;
  netsnmp_session session;
  snmp_sess_init(&session);
  session.peername = const_cast<char*>(access.agent.c_str());
  session.timeout = static_cast<long>(access.timeout * 1e6);
  session.retries = 0;  // what is repeated would be done twice
  if (access.user.empty()) {
    session.version = SNMP_VERSION_2c;
    session.community = reinterpret_cast<u8*>(const_cast<char*>(access.community.c_str()));
    session.community_len = access.community.size();
  } else {
    useUser(session, access);
  }
  session_->handle = snmp_sess_open(&session);
  if (session_->handle == nullptr) throw ClientError("no connection to " + access.agent);
}

Client::~Client() = default;

SetResult Client::set(u16 id, const std::vector<u8>& bytes) {
  std::size_t sent = 0;
  while (true) {
    const std::size_t size = std::min(session_->piece, bytes.size() - sent);
    const bool last = sent + size == bytes.size();
    const Pdu response = session_->set(last ? kFrame : kFrameMore, id, bytes.data() + sent, size);
    const long status = response->errstat;
    if (status != SNMP_ERR_NOERROR && status != SNMP_ERR_INCONSISTENTVALUE) refused(status);
    sent += size;
    if (last || status != SNMP_ERR_NOERROR)
      return {status == SNMP_ERR_NOERROR, bytesOf(session_->get(id, {kReply})->variables)};
  }
}

void Client::query(u16 id, const std::vector<u8>& bytes) {
  const Pdu response = session_->set(kQuery, id, bytes.data(), bytes.size());
  if (response->errstat != SNMP_ERR_NOERROR) refused(response->errstat);
}

Piece Client::next(u16 id) {
  const Pdu response = session_->get(id, {kAnswer, kAnswerLast});
  Piece piece{bytesOf(response->variables), true};
  const netsnmp_variable_list* last = response->variables->next_variable;
  if (last == nullptr || last->type != ASN_INTEGER) throw ClientError("a response of another form");
  piece.last = *last->val.integer != 0;
  return piece;
}

}  // namespace frame
