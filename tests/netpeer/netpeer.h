// Test peers speaking the wire format on 127.0.0.1.
#pragma once
#include <enet/enet.h>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>
#include "../support/console_capture.h"

typedef std::vector<uint8_t> Bytes;

// A wire packet: its type, 16-bit fields, a text maybe, a zero.
inline Bytes Pkt(uint8_t type, std::initializer_list<int> shorts = {}, const char *text = nullptr) {
  Bytes b{type};
  auto put = [&](int v) { b.insert(b.end(), {(uint8_t)v, (uint8_t)(v >> 8)}); };
  for (int v : shorts) put(v);
  if (text) put((int)std::strlen(text)), b.insert(b.end(), text, text + std::strlen(text));
  b.push_back(0);
  return b;
}
inline std::string Hex(const Bytes &b) {
  std::string s;
  for (uint8_t c : b) s += "0123456789ABCDEF"[c >> 4], s += "0123456789ABCDEF"[c & 15], s += ' ';
  return s.substr(0, s.size() - !s.empty());
}

// ENet's blocks not yet freed, once CountEnetBlocks() ran.
inline std::atomic<int> Held{0};
inline void CountEnetBlocks() {
  static ENetCallbacks counted{[](size_t n) { return ++Held, malloc(n); }, [](void *p) { Held -= !!p, free(p); }, nullptr};
  enet_initialize_with_callbacks(ENET_VERSION, &counted);
}

// A port per test run, so runs side by side don't clash.
inline uint16_t TestPort(int offset) { return (uint16_t)(30000 + getpid() % 15000 + offset); }
inline double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
// Runs `step` until `done` holds or `ms` have passed; whether it held.
inline bool PumpUntil(const std::function<void()> &step, const std::function<bool()> &done, double ms) {
  for (double end = NowMs() + ms; NowMs() < end; step())
    if (done()) return true;
  return done();
}

// A client or a server on 127.0.0.1, keeping what arrives.
class TestHost {
public:
  ENetHost *Host = nullptr;
  ENetPeer *Peer = nullptr;  // the server, or the last to connect
  struct Packet {
    Bytes Data;
    int Channel;
    double Time;
  };
  std::vector<Packet> Received;
  double ConnectTime = 0;

  ~TestHost() {
    if (Host) enet_host_destroy(Host);
  }
  bool Start(uint16_t port, bool server) {
    ENetAddress address{ENET_HOST_ANY, port};
    enet_address_set_host(&address, "127.0.0.1");
    Host = enet_host_create(server ? &address : nullptr, server ? 8 : 1, 2, 0, 0);
    return Host && (server || (Peer = enet_host_connect(Host, &address, 2, 0)));
  }
  bool Connected() const { return ConnectTime > 0; }
  void Service(int wait = 0) {
    for (ENetEvent e; enet_host_service(Host, &e, (enet_uint32)wait) > 0; wait = 0) {
      if (e.type == ENET_EVENT_TYPE_CONNECT) ConnectTime = NowMs(), Peer = e.peer;
      if (e.type != ENET_EVENT_TYPE_RECEIVE) continue;
      Received.push_back({Bytes(e.packet->data, e.packet->data + e.packet->dataLength), e.channelID, NowMs()});
      enet_packet_destroy(e.packet);
    }
  }
  void Send(const Bytes &b, int channel = 0) {
    enet_peer_send(Peer, (enet_uint8)channel, enet_packet_create(b.data(), b.size(), ENET_PACKET_FLAG_RELIABLE));
    enet_host_flush(Host);
  }
  // The packets from the `from`th on, as "channel: hex".
  Texts Seen(size_t from = 0) const {
    Texts out;
    for (size_t i = from; i < Received.size(); i++)
      out.push_back(std::to_string(Received[i].Channel) + ": " + Hex(Received[i].Data));
    return out;
  }
  std::string LocalPort() const {
    ENetAddress a{};
    enet_socket_get_address(Host->socket, &a);
    return std::to_string(a.port);
  }
};
