/// Parameter description node, read directly by the runtime and its tools.
#pragma once

#include <stdint.h>

/// What a `RegisterInfo` describes; decides which member of its value area is meaningful.
enum RegisterInfoKind {
  REGISTER_INFO_GROUP = 0,
  REGISTER_INFO_UINT = 1,
  REGISTER_INFO_ENUM = 3,
  REGISTER_INFO_STRING = 5,
  REGISTER_INFO_DOUBLE = 6,
  REGISTER_INFO_UINT_FIELD = 7,
  REGISTER_INFO_DOUBLE_FIELD = 8,
  REGISTER_INFO_UINT64 = 9,
  REGISTER_INFO_INT = 11,
  REGISTER_INFO_INT64 = 12,
  REGISTER_INFO_INT_FIELD = 13
};

/// Bits of `RegisterInfo::accessMode`.
enum RegisterInfoAccess {
  REGISTER_INFO_READABLE = 1,
  REGISTER_INFO_WRITABLE = 2,
  REGISTER_INFO_RUNTIME_FLAG = 4  ///< For the runtime's tools.
};

/// One node of the description forest of a process (camera port): a group with children or a
/// parameter with its range. Every pointer is owned by the registry that created the node and stays
/// valid until the applet instance is released. Readers must not change a node; sets change
/// the ranges and access modes of some nodes.
struct RegisterInfo {
  uint32_t kind;        ///< `RegisterInfoKind`.
  uint32_t index;       ///< Position among the parent's children; not meaningful for root groups.
  char* name;           ///< Display text, single-byte characters.
  char* paramName;      ///< SDK parameter name; null for groups.
  uint32_t accessMode;  ///< `RegisterInfoAccess` bits; not set for groups.
  uint32_t qualifier;   ///< For the runtime's tools; not set for groups.
  uint32_t visible;     ///< Nonzero: part of the GenApi document; not set for groups.
  int32_t id;           ///< SDK parameter id; not set for groups.
  union {
    struct {
      uint32_t childCount;
      struct RegisterInfo** children;  ///< `childCount` nodes in insertion order.
      uint32_t nextChildIndex;
    } group;
    struct {
      uint32_t min, max, inc;
    } uint32;
    struct {
      int32_t min, max, inc;
    } int32;
    struct {
      uint64_t min, max, inc;
    } uint64;
    struct {
      int64_t min, max, inc;
    } int64;
    struct {
      double min, max, inc;
    } real;
    struct {
      uint32_t entryCount;
      char** names;  ///< Display texts.
      int32_t* values;
      void* unused;
      char** identifiers;  ///< Symbolic names such as "FG_ON"; an element may be null.
    } enumeration;
    struct {
      uint64_t unused;
      char* value;
    } string;
    struct {
      uint32_t value, max, count, zero, initial;
    } uintField;
    struct {
      int32_t value, max, count, zero, initial;
    } intField;
    struct {
      double value, max;
      int32_t count;
      double initial;
    } realField;
    unsigned char bytes[40];
  } value;
  struct RegisterInfo* next;  ///< Root groups: the next older root group of the process.
  struct RegisterInfo* prev;  ///< Root groups: the next newer root group of the process.
  uint32_t level;             ///< Groups: 0 for a root group, parent's level + 1 below.
  char* parentName;           ///< Sub-groups: the parent group's name; null otherwise.
  char* unit;                 ///< Such as "\xB5s"; null when there is none.
  int32_t process;            ///< Process (camera port) the node belongs to.
};
