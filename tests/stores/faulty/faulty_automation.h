// A decorator for any store whose calls fail as a test plans; transparent if nothing is planned.
#pragma once

#include <memory>
#include <string>

#include "outlook/object_model.h"
#include "stores/faulty/fault_plan.h"

namespace tidyfold {

// Decorates every object that it returns, and theirs. The plan must outlive them all.
class Faulty_Automation : public Automation {
 public:
  Faulty_Automation(Automation& inner, Fault_Plan& plan) : inner_(inner), plan_(plan) {}
  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) override {
    inner_.Ask_When_Busy(std::move(go_on));
  }
  std::string Why_Not_Reached() const override { return inner_.Why_Not_Reached(); }
  Change_Groups* Groups() override { return inner_.Groups(); }
  bool Asking_Costs_Calls() const override { return inner_.Asking_Costs_Calls(); }
  std::string Place_Of_Store(const std::string& store_id) const override {
    return inner_.Place_Of_Store(store_id);
  }

 private:
  Automation& inner_;
  Fault_Plan& plan_;
};

}  // namespace tidyfold
