// TVerrou : le verrou consultatif qui fait d'un dossier ouvert en écriture l'affaire
// d'un seul programme.
//
// Le verrou se prend sur un fichier du dossier (flock) par un descripteur à lui : il
// dure autant que l'objet, quoi que deviennent les autres descripteurs du même fichier.
// Un écrivain le prend exclusif, un lecteur partagé ; celui qui ne l'obtient pas attend
// un temps borné, puis renonce. Le système le rend de lui-même si le programme meurt.
#pragma once
#include <memory>
#include <string>

namespace rqbase {

class TVerrou {
 public:
  enum class TMode { Partage, Exclusif };
  enum class TIssue { Pris, Occupe, Impossible };

  // Attend au plus `attenteMs` millisecondes. Nul si le verrou n'est pas pris : `issue`
  // dit alors s'il est tenu par un autre (Occupe) ou si le fichier ne s'ouvre pas
  // (absent, lien symbolique, pas un fichier ordinaire : Impossible). Un disque en
  // mémoire installé n'a pas d'autre programme : le verrou est toujours pris.
  static std::unique_ptr<TVerrou> Prend(const std::string& chemin, TMode mode, int attenteMs, TIssue& issue);
  // Attente par défaut : $RQBASE_ATTENTE_VERROU (millisecondes), sinon 10 secondes.
  static int AttenteParDefaut();

  ~TVerrou();
  TVerrou(const TVerrou&) = delete;
  TVerrou& operator=(const TVerrou&) = delete;

 private:
  explicit TVerrou(int fd) : Fd(fd) {}
  int Fd;
};

}  // namespace rqbase
