#include "gentl/buffer.h"

namespace gentl {
namespace {

using Picture = Buffer::Picture;

Picture& delivered(Buffer& buffer) {
  require(buffer.picture.present && buffer.state != Buffer::State::kInput, GC_ERR_NOT_AVAILABLE,
          "the buffer holds no delivered picture");
  return buffer.picture;
}
/// Of a delivered picture.
template <auto what>
Value shows(Buffer& buffer) {
  return tell<what>(delivered(buffer));
}
template <auto member>
Value holds(Buffer& buffer) {
  return tell<member>(buffer.picture);
}
Value isCut(Buffer& buffer) {
  const Picture& picture = delivered(buffer);
  return toValue(picture.incomplete && picture.bytes() > buffer.size);
}

const InfoRow<Buffer> kInfos[] = {
    {BUFFER_INFO_BASE, INFO_DATATYPE_PTR, tell<&Buffer::base>, "BufferBase"},
    {BUFFER_INFO_SIZE, INFO_DATATYPE_SIZET, tell<&Buffer::size>, "BufferSize"},
    {BUFFER_INFO_USER_PTR, INFO_DATATYPE_PTR, tell<&Buffer::user>, "BufferUserData"},
    {BUFFER_INFO_TIMESTAMP, INFO_DATATYPE_UINT64, shows<&Picture::time>},
    {BUFFER_INFO_NEW_DATA, INFO_DATATYPE_BOOL8, holds<&Picture::hasPixels>},
    {BUFFER_INFO_IS_QUEUED, INFO_DATATYPE_BOOL8, tell<&Buffer::queued>},
    {BUFFER_INFO_IS_ACQUIRING, INFO_DATATYPE_BOOL8, tell<&Buffer::acquiring>},
    {BUFFER_INFO_IS_INCOMPLETE, INFO_DATATYPE_BOOL8, holds<&Picture::incomplete>},
    {BUFFER_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
    {BUFFER_INFO_SIZE_FILLED, INFO_DATATYPE_SIZET, holds<&Picture::filled>},
    {BUFFER_INFO_WIDTH, INFO_DATATYPE_SIZET, shows<&Picture::width>},
    {BUFFER_INFO_HEIGHT, INFO_DATATYPE_SIZET, shows<&Picture::height>},
    {BUFFER_INFO_XOFFSET, INFO_DATATYPE_SIZET, shows<&Picture::xOffset>},
    {BUFFER_INFO_YOFFSET, INFO_DATATYPE_SIZET, shows<&Picture::yOffset>},
    {BUFFER_INFO_XPADDING, INFO_DATATYPE_SIZET, shows<0>},
    {BUFFER_INFO_YPADDING, INFO_DATATYPE_SIZET, shows<0>},
    {BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64, shows<&Picture::number>},
    {BUFFER_INFO_IMAGEPRESENT, INFO_DATATYPE_BOOL8, shows<&Picture::hasPixels>},
    {BUFFER_INFO_IMAGEOFFSET, INFO_DATATYPE_SIZET, shows<0>},
    {BUFFER_INFO_PAYLOADTYPE, INFO_DATATYPE_SIZET, shows<PAYLOAD_TYPE_IMAGE>},
    {BUFFER_INFO_PIXELFORMAT, INFO_DATATYPE_UINT64, shows<PFNC_BGR8>},
    {BUFFER_INFO_PIXELFORMAT_NAMESPACE, INFO_DATATYPE_UINT64,
     shows<PIXELFORMAT_NAMESPACE_PFNC_32BIT>},
    {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, INFO_DATATYPE_SIZET, shows<&Picture::lines>},
    {BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, INFO_DATATYPE_SIZET, shows<0>},
    {BUFFER_INFO_CHUNKLAYOUTID, INFO_DATATYPE_UINT64, nullptr},
    {BUFFER_INFO_FILENAME, INFO_DATATYPE_STRING, nullptr},
    {BUFFER_INFO_PIXEL_ENDIANNESS, INFO_DATATYPE_INT32, shows<PIXELENDIANNESS_LITTLE>},
    {BUFFER_INFO_DATA_SIZE, INFO_DATATYPE_SIZET, shows<&Picture::bytes>},
    {BUFFER_INFO_TIMESTAMP_NS, INFO_DATATYPE_UINT64, shows<&Picture::time>},
    {BUFFER_INFO_DATA_LARGER_THAN_BUFFER, INFO_DATATYPE_BOOL8, isCut},
    {BUFFER_INFO_CONTAINS_CHUNKDATA, INFO_DATATYPE_BOOL8, shows<0>},
    {BUFFER_INFO_IS_COMPOSITE, INFO_DATATYPE_BOOL8, tell<false>},
};

}  // namespace

Buffer::Buffer(const std::shared_ptr<Module>& stream, void* base, std::size_t size, void* user)
    : Module(stream->id + "-buffer", "TLBuffer", stream),
      size(size),
      user(user),
      memory_(base ? nullptr : std::make_unique<char[]>(size)),
      base_(base ? base : memory_.get()) {
  addInfos(kInfos, [this]() -> Buffer& { return *this; });
}

void Buffer::info(BUFFER_INFO_CMD command, Answer to) { answer(kInfos, *this, command, to); }

}  // namespace gentl
