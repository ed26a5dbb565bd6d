#include "Peer.h"

#include "Limits.h"
#include "StationPeer.h"
#include "TreePeer.h"
#ifdef STN_BENCH_NTUPLE
#include "NTuplePeer.h"
#endif

namespace StnBench {
namespace {

template <class Writer>
std::unique_ptr<EventWriter> Write(const std::string& path, int compression) {
  return std::make_unique<Writer>(path, compression);
}

template <class Reader>
std::unique_ptr<EventReader> Read(const std::string& path, Peer::Part part) {
  return std::make_unique<Reader>(path, part);
}

}  // namespace

const std::vector<Peer>& GetPeers() {
  static const std::vector<Peer> peers = {
      {"station", Write<StationWriter>, Read<StationReader>},
      {"tree", Write<TreeWriter>, Read<TreeReader>},
#ifdef STN_BENCH_NTUPLE
      {"ntuple", Write<NTupleWriter>, Read<NTupleReader>},
#endif
  };
  return peers;
}

const std::vector<Peer>& GetLimits() {
  static const std::vector<Peer> limits = {{"zip", Write<ZipWriter>, Read<ZipReader>},
                                           {"memcpy", Write<CopyWriter>, Read<CopyReader>}};
  return limits;
}

}  // namespace StnBench
