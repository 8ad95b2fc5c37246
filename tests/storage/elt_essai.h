// Un élément de table d'essai : une clé de texte et un numéro, ordonné par la clé.
#pragma once
#include <cstdint>
#include <string>

#include "rqbase/storage/g_tblvar.h"

namespace rqbase::essai {

class TEltEssai : public TEltBaseTV {
 public:
  TEltEssai() = default;
  TEltEssai(std::string cle, int32_t numero) : Cle(std::move(cle)), Numero(numero) {}
  char* Ecrit(char* p) const override {
    EcritMemoire(&Numero, sizeof Numero, p);
    EcritChn(Cle, p);
    return p;
  }
  void Lit(const char* p, long taille) override {
    const char* fin = p + taille;
    LitMemoire(&Numero, sizeof Numero, p, fin);
    Cle = LitChn(p, fin);
  }
  int GetTaille() const override { return int(sizeof Numero + Cle.size() + 1); }
  int GetTailleMax() const override { return int(sizeof Numero) + 101; }
  int EltCmp(const TEltBaseTV& autre) const override {
    return Cle.compare(static_cast<const TEltEssai&>(autre).Cle);
  }
  bool EgalPremier(const TEltBaseTV& autre) const override {
    const auto& a = static_cast<const TEltEssai&>(autre);
    return !Cle.empty() && !a.Cle.empty() && Cle[0] == a.Cle[0];
  }

  std::string Cle;
  int32_t Numero = 0;
};

}  // namespace rqbase::essai
