// Switching augments on and off within the slot budget that they share.
#include <algorithm>

#include "standin/json_access.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

class Augments {
 public:
  explicit Augments(const JSON::Object& world)
      : known_(textsIn(world, "augments")),
        active_(textsIn(world, "activeAugments")),
        slots_(static_cast<std::size_t>(integerIn(world, "augmentSlots", 5))) {}

  JSON activate(const Arguments& arguments) {
    const std::string id = arguments.text("id");
    if (!contains(known_, id))
      throw invalid("unknown augment: " + id, JSON::Object{{"validAugments", toArray(known_)}});
    const bool wasActive = contains(active_, id);
    if (!wasActive) {
      if (active_.size() >= slots_) {
        throw Refusal(MCPMutationErrorCode::slotBudgetFull,
                      "All " + std::to_string(slots_) + " augment slots are in use — deactivate one first.", loadout());
      }
      active_.push_back(id);
    }
    return withLoadout({{"activated", true}, {"wasActive", wasActive}, {"id", id}});
  }

  JSON deactivate(const Arguments& arguments) {
    const std::string id = arguments.text("id");
    const auto found = std::find(active_.begin(), active_.end(), id);
    const bool wasActive = found != active_.end();
    if (wasActive) active_.erase(found);
    return withLoadout({{"deactivated", wasActive}, {"id", id}});
  }

 private:
  JSON::Object loadout() const {
    return {{"loadout", toArray(active_)}, {"slotsUsed", active_.size()}, {"slotsTotal", slots_}};
  }

  JSON withLoadout(JSON::Object result) const {
    for (const JSONMember& member : loadout()) result.set(member.key, member.value);
    return result;
  }

  std::vector<std::string> known_;
  std::vector<std::string> active_;
  std::size_t slots_;
};

}  // namespace

void addAugmentMethods(MethodTable& table, const JSON::Object& world) {
  const auto augments = std::make_shared<Augments>(world);
  addMethod(table, augments, "activate_augment", Gate::changes, &Augments::activate);
  addMethod(table, augments, "deactivate_augment", Gate::changes, &Augments::deactivate);
}

}  // namespace orvane::standin
