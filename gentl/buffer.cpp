#include "gentl/buffer.h"

namespace gentl {
namespace {

using Picture = Buffer::Picture;
using State = Buffer::State;

void requirePicture(const Buffer& buffer) {
  require(buffer.picture.present && buffer.state != State::kInput, GC_ERR_NOT_AVAILABLE,
          "the buffer holds no delivered picture");
}
template <auto member>
Value pictureInfo(Buffer& buffer) {
  requirePicture(buffer);
  return number(buffer.picture.*member);
}
template <std::uint64_t constant>
Value pictureConstant(Buffer& buffer) {
  requirePicture(buffer);
  return constant;
}

const InfoRow<Buffer> kInfos[] = {
    {BUFFER_INFO_BASE, INFO_DATATYPE_PTR, [](Buffer& b) { return pointer(b.base()); },
     "BufferBase"},
    {BUFFER_INFO_SIZE, INFO_DATATYPE_SIZET, [](Buffer& b) { return number(b.size); }, "BufferSize"},
    {BUFFER_INFO_USER_PTR, INFO_DATATYPE_PTR, [](Buffer& b) { return pointer(b.user); },
     "BufferUserData"},
    {BUFFER_INFO_TIMESTAMP, INFO_DATATYPE_UINT64, pictureInfo<&Picture::time>},
    {BUFFER_INFO_NEW_DATA, INFO_DATATYPE_BOOL8,
     [](Buffer& b) { return number(b.picture.filled > 0); }},
    {BUFFER_INFO_IS_QUEUED, INFO_DATATYPE_BOOL8,
     [](Buffer& b) { return number(b.state != State::kIdle); }},
    {BUFFER_INFO_IS_ACQUIRING, INFO_DATATYPE_BOOL8,
     [](Buffer& b) { return number(b.lent && b.state != State::kInput); }},
    {BUFFER_INFO_IS_INCOMPLETE, INFO_DATATYPE_BOOL8,
     [](Buffer& b) { return number(b.picture.incomplete); }},
    {BUFFER_INFO_TLTYPE, INFO_DATATYPE_STRING, [](Buffer&) { return Value(kTechnology); }},
    {BUFFER_INFO_SIZE_FILLED, INFO_DATATYPE_SIZET,
     [](Buffer& b) { return number(b.picture.filled); }},
    {BUFFER_INFO_WIDTH, INFO_DATATYPE_SIZET, pictureInfo<&Picture::width>},
    {BUFFER_INFO_HEIGHT, INFO_DATATYPE_SIZET, pictureInfo<&Picture::height>},
    {BUFFER_INFO_XOFFSET, INFO_DATATYPE_SIZET, pictureInfo<&Picture::xOffset>},
    {BUFFER_INFO_YOFFSET, INFO_DATATYPE_SIZET, pictureInfo<&Picture::yOffset>},
    {BUFFER_INFO_XPADDING, INFO_DATATYPE_SIZET, pictureConstant<0>},
    {BUFFER_INFO_YPADDING, INFO_DATATYPE_SIZET, pictureConstant<0>},
    {BUFFER_INFO_FRAMEID, INFO_DATATYPE_UINT64, pictureInfo<&Picture::number>},
    {BUFFER_INFO_IMAGEPRESENT, INFO_DATATYPE_BOOL8,
     [](Buffer& b) {
       requirePicture(b);
       return number(b.picture.filled > 0);
     }},
    {BUFFER_INFO_IMAGEOFFSET, INFO_DATATYPE_SIZET, pictureConstant<0>},
    {BUFFER_INFO_PAYLOADTYPE, INFO_DATATYPE_SIZET, pictureConstant<PAYLOAD_TYPE_IMAGE>},
    {BUFFER_INFO_PIXELFORMAT, INFO_DATATYPE_UINT64, pictureConstant<PFNC_BGR8>},
    {BUFFER_INFO_PIXELFORMAT_NAMESPACE, INFO_DATATYPE_UINT64,
     pictureConstant<PIXELFORMAT_NAMESPACE_PFNC_32BIT>},
    {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, INFO_DATATYPE_SIZET, pictureInfo<&Picture::lines>},
    {BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, INFO_DATATYPE_SIZET, pictureConstant<0>},
    {BUFFER_INFO_CHUNKLAYOUTID, INFO_DATATYPE_UINT64, nullptr},
    {BUFFER_INFO_FILENAME, INFO_DATATYPE_STRING, nullptr},
    {BUFFER_INFO_PIXEL_ENDIANNESS, INFO_DATATYPE_INT32, pictureConstant<PIXELENDIANNESS_LITTLE>},
    {BUFFER_INFO_DATA_SIZE, INFO_DATATYPE_SIZET,
     [](Buffer& b) {
       requirePicture(b);
       return number(b.picture.bytes());
     }},
    {BUFFER_INFO_TIMESTAMP_NS, INFO_DATATYPE_UINT64, pictureInfo<&Picture::time>},
    {BUFFER_INFO_DATA_LARGER_THAN_BUFFER, INFO_DATATYPE_BOOL8,
     [](Buffer& b) {
       requirePicture(b);
       return number(b.picture.incomplete && b.picture.bytes() > b.size);
     }},
    {BUFFER_INFO_CONTAINS_CHUNKDATA, INFO_DATATYPE_BOOL8, pictureConstant<0>},
    {BUFFER_INFO_IS_COMPOSITE, INFO_DATATYPE_BOOL8, [](Buffer&) { return number(0); }},
};

}  // namespace

Buffer::Buffer(const std::string& stream, void* base, std::size_t size, void* user)
    : Module(stream + "-buffer", "TLBuffer", {EVENT_ERROR, EVENT_MODULE}),
      size(size),
      user(user),
      memory_(base ? nullptr : std::make_unique<char[]>(size)),
      base_(base ? base : memory_.get()) {
  addInfos(kInfos, *this);
}

void Buffer::info(BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* out, std::size_t* room) {
  answer(kInfos, *this, command, type, out, room);
}

}  // namespace gentl
