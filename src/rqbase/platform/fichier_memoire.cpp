// TDisqueMemoire : une table chemin -> octets, et le fichier qui les lit et les écrit.
#include "rqbase/platform/fichier_memoire.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

namespace rqbase {

namespace {

std::atomic<TDisqueMemoire*> gDisque{nullptr};

class TFichierMemoire final : public TFichierBrut {
 public:
  TFichierMemoire(std::shared_ptr<TDisqueMemoire::TOctets> octets, std::string chemin, TAcces acces, bool immediate,
                  size_t tailleMax)
      : TFichierBrut(std::move(chemin), acces, immediate), Octets(std::move(octets)), TailleMax(tailleMax) {}

  int64_t Taille() const override { return static_cast<int64_t>(Octets->size()); }
  bool Tronque(int64_t taille) override {
    if (Acces == TAcces::Lecture || taille < 0 || static_cast<size_t>(taille) > TailleMax) return false;
    Octets->resize(static_cast<size_t>(taille));
    return true;
  }
  bool Flush() override { return true; }
  bool ChangeEcritureImmediate(bool immediate) override {
    Immediate = immediate;
    return true;
  }

 protected:
  int64_t LitBrut(int64_t position, void* tampon, size_t taille) override {
    const size_t debut = static_cast<size_t>(position);
    if (debut >= Octets->size()) return 0;
    const size_t n = std::min(taille, Octets->size() - debut);
    std::memcpy(tampon, Octets->data() + debut, n);
    return static_cast<int64_t>(n);
  }
  int64_t EcritBrut(int64_t position, const void* tampon, size_t taille) override {
    const size_t debut = static_cast<size_t>(position);
    if (debut >= TailleMax) {
      FixeDerniereErreur(ENOSPC);
      return -1;
    }
    const size_t n = std::min(taille, TailleMax - debut);
    if (Octets->size() < debut + n) Octets->resize(debut + n);
    std::memcpy(Octets->data() + debut, tampon, n);
    if (n < taille) FixeDerniereErreur(ENOSPC);
    return static_cast<int64_t>(n);
  }

 private:
  std::shared_ptr<TDisqueMemoire::TOctets> Octets;
  size_t TailleMax;
};

}  // namespace

TDisqueMemoire* TDisqueMemoire::Installe() { return gDisque.load(std::memory_order_acquire); }

TDisqueMemoire::TInstallation::TInstallation(TDisqueMemoire& disque) { gDisque.store(&disque); }
TDisqueMemoire::TInstallation::~TInstallation() { gDisque.store(nullptr); }

void TDisqueMemoire::Pose(const std::string& chemin, TOctets octets) {
  std::lock_guard<std::mutex> g(Verrou);
  Fichiers[chemin] = std::make_shared<TOctets>(std::move(octets));
}

TDisqueMemoire::TOctets TDisqueMemoire::Contenu(const std::string& chemin) const {
  std::lock_guard<std::mutex> g(Verrou);
  auto it = Fichiers.find(chemin);
  return it == Fichiers.end() ? TOctets{} : *it->second;
}

bool TDisqueMemoire::Existe(const std::string& chemin) const {
  std::lock_guard<std::mutex> g(Verrou);
  return Fichiers.count(chemin) != 0;
}

void TDisqueMemoire::Vide() {
  std::lock_guard<std::mutex> g(Verrou);
  Fichiers.clear();
}

std::unique_ptr<TFichierBrut> TDisqueMemoire::Ouvre(const std::string& chemin, TFichierBrut::TAcces acces,
                                                    TFichierBrut::TDisposition disposition, bool ecritureImmediate) {
  using D = TFichierBrut::TDisposition;
  std::lock_guard<std::mutex> g(Verrou);
  auto it = Fichiers.find(chemin);
  const bool ecriture = acces == TFichierBrut::TAcces::LectureEcriture;
  if (it == Fichiers.end()) {
    if (!ecriture || disposition == D::Ouvre) return nullptr;
    it = Fichiers.emplace(chemin, std::make_shared<TOctets>()).first;
  } else if (ecriture && disposition == D::CreeOuRemplace) {
    it->second->clear();
  }
  return std::make_unique<TFichierMemoire>(it->second, chemin, acces, ecritureImmediate, TailleMaxFichier);
}

}  // namespace rqbase
