// TFichierBrut : un fichier ouvert pour des enregistrements à accès direct.
//
// Seul endroit des appels POSIX sur les fichiers de données. Lectures et écritures
// sont positionnées (pread/pwrite), sans position courante partagée. L'écriture
// immédiate (O_DSYNC) est le mode normal ; un travail de masse (import, conversion,
// réparation) la coupe puis appelle Flush() à la fin.
//
// TPannes est la couture d'injection de pannes des tests : après un nombre choisi
// d'opérations réussies, les lectures ou écritures échouent ou reviennent courtes.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace rqbase {

class TPannes {
 public:
  // Après n opérations réussies du genre donné, chacune des suivantes échoue
  // (rend -1), ou revient courte (la moitié des octets), jusqu'à Raz().
  // Un fragment non vide limite la panne aux chemins qui le contiennent.
  void EchoueLectureApres(int n, const std::string& fragment = "");
  void EchoueEcritureApres(int n, const std::string& fragment = "");
  void LectureCourteApres(int n, const std::string& fragment = "");
  void EcritureCourteApres(int n, const std::string& fragment = "");
  // Toute ouverture en écriture d'un chemin contenant le fragment échoue (EACCES),
  // comme dans un dossier en lecture seule, même pour root.
  void RefuseEcriture(const std::string& fragment);
  void Raz();

  enum class TEffet { Aucun, Echec, Courte };
  // Appelées par TFichierBrut avant chaque opération.
  TEffet AvantLecture(const std::string& chemin);
  TEffet AvantEcriture(const std::string& chemin);
  bool EcritureRefusee(const std::string& chemin);

 private:
  struct TRegle {
    bool Active = false;
    TEffet Effet = TEffet::Aucun;
    int Restant = 0;
    std::string Fragment;
  };
  static TEffet Applique(TRegle& regle, const std::string& chemin);
  TRegle Lecture, Ecriture;
  std::string FragmentLectureSeule;
  std::atomic<bool> Armee{false};
};

// Un fichier ouvert pour des enregistrements à accès direct. Deux réalisations : le
// fichier du système (Ouvre) et le fichier en mémoire d'un TDisqueMemoire installé
// (fichier_memoire.h), qui tient un dossier entier sans toucher au disque. Les pannes
// injectées et la règle des longueurs valent pour les deux.
class TFichierBrut {
 public:
  enum class TAcces { Lecture, LectureEcriture };
  enum class TDisposition {
    Ouvre,           // le fichier doit exister
    OuvreOuCree,     // créé vide s'il manque
    CreeOuRemplace,  // toujours vide après l'ouverture
  };

  // nullptr en cas d'échec ; DerniereErreur() donne alors errno. Un lien symbolique
  // n'est jamais suivi (ELOOP) et seul un fichier ordinaire s'ouvre (un dossier : EISDIR,
  // un tube, un périphérique ou une prise : EINVAL), sans jamais attendre sur un tube.
  // Quand un disque en mémoire est installé, c'est lui qui sert le chemin.
  static std::unique_ptr<TFichierBrut> Ouvre(const std::string& chemin, TAcces acces, TDisposition disposition,
                                             bool ecritureImmediate = true);
  static int DerniereErreur();

  virtual ~TFichierBrut() = default;
  TFichierBrut(const TFichierBrut&) = delete;
  TFichierBrut& operator=(const TFichierBrut&) = delete;

  // Octets lus (moins que demandé en fin de fichier), ou -1 en cas d'échec.
  int64_t LitA(int64_t position, void* tampon, size_t taille);
  // Octets écrits : `taille` quand tout est parti ; moins si le disque a refusé la suite
  // (disque plein), -1 en cas d'échec. L'appelant tient toute écriture incomplète pour ratée.
  int64_t EcritA(int64_t position, const void* tampon, size_t taille);
  // Écrit tout ou rend false : la forme à utiliser pour un enregistrement.
  bool EcritTout(int64_t position, const void* tampon, size_t taille) {
    return EcritA(position, tampon, taille) == static_cast<int64_t>(taille);
  }
  // Taille en octets, ou -1.
  virtual int64_t Taille() const = 0;
  virtual bool Tronque(int64_t taille) = 0;
  virtual bool Flush() = 0;
  // Change le mode d'écriture immédiate (le fichier du système rouvre son descripteur).
  virtual bool ChangeEcritureImmediate(bool immediate) = 0;

  bool EcritureImmediate() const { return Immediate; }
  bool EnLectureSeule() const { return Acces == TAcces::Lecture; }
  const std::string& Chemin() const { return CheminFichier; }

  static TPannes& Pannes();

 protected:
  TFichierBrut(std::string chemin, TAcces acces, bool immediate)
      : CheminFichier(std::move(chemin)), Acces(acces), Immediate(immediate) {}
  // Les opérations de la réalisation, sans pannes : lecture jusqu'à `taille` ou la fin,
  // écriture de tout ou de ce que le support a pris.
  virtual int64_t LitBrut(int64_t position, void* tampon, size_t taille) = 0;
  virtual int64_t EcritBrut(int64_t position, const void* tampon, size_t taille) = 0;
  friend class TDisqueMemoire;
  static void FixeDerniereErreur(int erreur);

  std::string CheminFichier;
  TAcces Acces;
  bool Immediate;
};

}  // namespace rqbase
