// TProgression : la barre de progression d'un long travail, avec son drapeau
// d'abandon. Le travail lit Abandon() entre deux pas et s'arrête proprement.
// La ligne de commande dessine une barre sur stderr et lève le drapeau sur Ctrl-C ;
// les tests enregistrent les positions.
#pragma once
#include <atomic>
#include <string>

namespace rqbase {

class TProgression {
 public:
  virtual ~TProgression() = default;
  virtual void Titre(const std::string& titre) { (void)titre; }
  virtual void Texte(const std::string& ligne) { (void)ligne; }
  virtual void Maximum(long maximum) { Max = maximum; }
  virtual void Position(long position) { Pos = position; }
  void Avance(long pas = 1) { Position(Pos + pas); }

  bool Abandon() const { return AbandonDemande.load(std::memory_order_relaxed); }
  void DemandeAbandon() { AbandonDemande.store(true, std::memory_order_relaxed); }

  long Max = 0;
  long Pos = 0;

 private:
  std::atomic<bool> AbandonDemande{false};
};

// Une progression qui ne montre rien : celle qu'on passe quand l'appelant n'en donne pas.
TProgression& ProgressionMuette();

}  // namespace rqbase
