#include "photoshop_resources.h"

#include <algorithm>

namespace client {
namespace {

constexpr std::string_view kMark = "8BIM";
constexpr std::size_t kIdBytes = 2;
constexpr std::size_t kLengthBytes = 4;

constexpr std::size_t Even(std::size_t bytes) {
  return bytes + bytes % 2;
}

}  // namespace

PhotoshopResources ReadPhotoshop(View list) {
  PhotoshopResources resources;
  while (StartsWith(list, kMark)) {
    View rest = list.subspan(kMark.size());
    if (rest.size() <= kIdBytes) break;
    const auto id = static_cast<std::uint16_t>(NumberIn(rest, kIdBytes));
    rest = rest.subspan(kIdBytes);
    const std::size_t nameBytes = Even(rest.front() + std::size_t{1});
    if (rest.size() < nameBytes + kLengthBytes) break;
    const View name = rest.first(nameBytes);
    const std::size_t length = NumberIn(rest.subspan(nameBytes), kLengthBytes);
    rest = rest.subspan(nameBytes + kLengthBytes);
    if (rest.size() < length) break;
    resources.push_back({id, Bytes(name.begin(), name.end()),
                         Bytes(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length))});
    list = rest.subspan(std::min(Even(length), rest.size()));
  }
  return resources;
}

Bytes WritePhotoshop(const PhotoshopResources& resources) {
  Bytes list;
  for (const PhotoshopResource& resource : resources) {
    Append(list, ViewOf(kMark));
    AppendNumber(list, resource.id, kIdBytes);
    Append(list, resource.name);
    AppendNumber(list, resource.data.size(), kLengthBytes);
    Append(list, resource.data);
    list.resize(Even(list.size()));
  }
  return list;
}

Bytes TakePhotoshop(PhotoshopResources& resources, std::uint16_t id) {
  const auto found = std::find_if(resources.begin(), resources.end(),
                                  [=](const PhotoshopResource& one) { return one.id == id; });
  if (found == resources.end()) return {};
  Bytes data = std::move(found->data);
  resources.erase(found);
  return data;
}

void AddPhotoshop(PhotoshopResources& resources, std::uint16_t id, View data) {
  if (!data.empty()) resources.push_back({id, Bytes(2), Bytes(data.begin(), data.end())});
}

}  // namespace client
