#include "env/handle.h"

EnvHandleRecord::EnvHandleRecord(long tag, EnvHandleRecord* fallback_environment)
    : own_tree(std::make_unique<env::Tree>()), shared_tree(own_tree.get()), opened_from(nullptr),
      fallback(fallback_environment), layer_tag(tag) {
    if (fallback) ++fallback->open_subs;
}

EnvHandleRecord::EnvHandleRecord(EnvHandleRecord& parent, env::Element* element)
    : shared_tree(parent.shared_tree), opened_from(&parent), fallback(parent.fallback),
      layer_tag(parent.layer_tag) {
    pin.stand_on(*shared_tree, element);
    ++parent.open_subs;
}

EnvHandleRecord::~EnvHandleRecord() {
    if (opened_from)
        --opened_from->open_subs;
    else if (fallback)
        --fallback->open_subs;
}
