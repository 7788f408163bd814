// A test client and a fake server that speak the game's wire format through
// ENet directly, with bytes of their own, on the loopback address only; and a
// capture of the console's lines through its log stream.
#pragma once
#include <enet/enet.h>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>
#include "rvk/console.h"

typedef std::vector<uint8_t> Bytes;

// Little-endian building blocks of a packet.
inline void PutShort(Bytes &b, int v) { b.insert(b.end(), {(uint8_t)v, (uint8_t)(v >> 8)}); }
inline void PutInt(Bytes &b, int32_t v) {
  for (int i = 0; i < 4; i++) b.push_back((uint8_t)((uint32_t)v >> (8 * i)));
}
inline Bytes Pkt(uint8_t type) { return Bytes{type}; }
inline Bytes End(Bytes b) {
  b.push_back(0);
  return b;
}
// A packet of a type, 16-bit fields and maybe a text, closed by its zero byte.
inline Bytes Shorts(uint8_t type, std::initializer_list<int> values, const std::string *text = nullptr) {
  Bytes b{type};
  for (int v : values) PutShort(b, v);
  if (text) {
    PutShort(b, (int)text->size());
    b.insert(b.end(), text->begin(), text->end());
  }
  b.push_back(0);
  return b;
}
inline Bytes TextPkt(uint8_t type, std::initializer_list<int> values, const std::string &text) {
  return Shorts(type, values, &text);
}
// A 32-bit field is the same bytes as its low and high 16-bit halves.
inline Bytes ConsolePkt(int id, int32_t colour, const std::string &text) {
  return TextPkt(52, {id, colour & 0xFFFF, (int)((uint32_t)colour >> 16)}, text);
}
inline Bytes FloatPkt(uint8_t type, int id, float f) {
  uint32_t bits;
  std::memcpy(&bits, &f, 4);
  return Shorts(type, {id, (int)(bits & 0xFFFF), (int)(bits >> 16)});
}
inline std::string Hex(const Bytes &b) {
  std::string s;
  char t[4];
  for (size_t i = 0; i < b.size(); i++) {
    std::snprintf(t, sizeof(t), i ? " %02X" : "%02X", b[i]);
    s += t;
  }
  return s;
}

// A port per test run, in a high range, so that runs side by side don't clash.
inline uint16_t TestPort(int offset) { return (uint16_t)(30000 + (getpid() % 15000) + offset); }

inline double NowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct ReceivedPacket {
  Bytes Data;
  int Channel = 0;
  double Time = 0;
};

// One ENet host of the test's own, a client of a server on 127.0.0.1 or a
// server on 127.0.0.1, that keeps what arrives.
class TestHost {
public:
  ENetHost *Host = nullptr;
  ENetPeer *Peer = nullptr;  // the server, or the last peer that connected
  std::vector<ENetPeer *> Peers;  // every peer that connected, in order
  bool Connected = false;
  std::vector<ReceivedPacket> Received;
  double ConnectTime = 0;

  ~TestHost() { Close(); }

  bool StartClient(uint16_t port) {
    Host = enet_host_create(nullptr, 1, 2, 0, 0);
    if (!Host) return false;
    ENetAddress address;
    enet_address_set_host(&address, "127.0.0.1");
    address.port = port;
    Peer = enet_host_connect(Host, &address, 2, 0);
    return Peer != nullptr;
  }
  bool StartServer(uint16_t port) {
    ENetAddress address;
    enet_address_set_host(&address, "127.0.0.1");
    address.port = port;
    Host = enet_host_create(&address, 8, 2, 0, 0);
    return Host != nullptr;
  }
  // Takes whatever is there without waiting (or up to `wait` ms).
  void Service(int wait = 0) {
    if (!Host) return;
    ENetEvent event;
    while (enet_host_service(Host, &event, (enet_uint32)wait) > 0) {
      wait = 0;
      if (event.type == ENET_EVENT_TYPE_CONNECT) {
        Connected = true;
        ConnectTime = NowMs();
        Peer = event.peer;
        Peers.push_back(event.peer);
      } else if (event.type == ENET_EVENT_TYPE_RECEIVE) {
        ReceivedPacket p;
        p.Data.assign(event.packet->data, event.packet->data + event.packet->dataLength);
        p.Channel = event.channelID;
        p.Time = NowMs();
        Received.push_back(p);
        enet_packet_destroy(event.packet);
      }
    }
  }
  void Send(const Bytes &b, int channel = 0) {
    if (!Peer) return;
    ENetPacket *packet = enet_packet_create(b.data(), b.size(), ENET_PACKET_FLAG_RELIABLE);
    if (enet_peer_send(Peer, (enet_uint8)channel, packet) != 0) enet_packet_destroy(packet);
    enet_host_flush(Host);
  }
  void Close() {
    if (Host) enet_host_destroy(Host);
    Host = nullptr;
    Peer = nullptr;
  }
};

// The packets that `h` received from the `from`th on, as hex.
inline std::vector<std::string> ReceivedHex(const TestHost &h, size_t from = 0) {
  std::vector<std::string> out;
  for (size_t i = from; i < h.Received.size(); i++) out.push_back(Hex(h.Received[i].Data));
  return out;
}

// Runs `step` until `done` holds or `timeoutMs` has passed; true if it held.
inline bool PumpUntil(const std::function<void()> &step, const std::function<bool()> &done, double timeoutMs) {
  double end = NowMs() + timeoutMs;
  while (NowMs() < end) {
    step();
    if (done()) return true;
  }
  return done();
}

// The console's lines, caught through its log stream; the time stamp that
// each line of the log starts with is cut off.
class ConsoleCapture {
public:
  FILE *File = nullptr;
  ConsoleCapture() {
    File = std::tmpfile();
    ConsoleLogFile = File;
    ConsoleLogOn = true;
  }
  ~ConsoleCapture() {
    ConsoleLogOn = false;
    ConsoleLogFile = nullptr;
    if (File) std::fclose(File);
  }
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    std::fflush(File);
    std::rewind(File);
    char buffer[2048];
    while (std::fgets(buffer, sizeof(buffer), File)) {
      std::string line = buffer;
      if (!line.empty() && line.back() == '\n') line.pop_back();
      // "dd/mm/yyyy - hh:mm:ss: " comes first.
      size_t at = line.find(": ", 20);
      lines.push_back(at == std::string::npos ? line : line.substr(at + 2));
    }
    std::fseek(File, 0, SEEK_END);
    return lines;
  }
  bool Has(const std::string &line) {
    for (const std::string &l : Lines())
      if (l == line) return true;
    return false;
  }
  void Clear() {
    std::fclose(File);
    File = std::tmpfile();
    ConsoleLogFile = File;
  }
};
