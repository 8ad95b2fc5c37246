// TDialogue : les boîtes de message, seul dialogue de la bibliothèque.
//
// La bibliothèque appelle le dialogue installé. Celui par défaut ne bloque
// jamais : il rend une réponse fixe (Oui par défaut) et garde la trace des
// questions posées. Les réponses valent celles de Windows : Oui 6, Non 7,
// Annuler 2, Ok 1.
#pragma once
#include <string>
#include <vector>

namespace rqbase {

enum TReponse : int { ReponseOk = 1, ReponseAnnuler = 2, ReponseOui = 6, ReponseNon = 7 };
enum class TBoutons { Ok, OuiNon, OuiNonAnnuler };

class TDialogue {
 public:
  virtual ~TDialogue() = default;
  // Rend l'une des TReponse permises par les boutons.
  virtual int Question(const std::string& texte, const std::string& titre, TBoutons boutons) = 0;
  virtual void Information(const std::string& texte, const std::string& titre) = 0;
  virtual void Erreur(const std::string& texte, const std::string& titre) = 0;
};

// Réponse fixe, sans attente ; retient ce qui a été montré (utile aux tests).
class TDialogueFixe : public TDialogue {
 public:
  explicit TDialogueFixe(int reponse = ReponseOui) : Reponse(reponse) {}
  int Question(const std::string& texte, const std::string& titre, TBoutons boutons) override;
  void Information(const std::string& texte, const std::string& titre) override;
  void Erreur(const std::string& texte, const std::string& titre) override;

  int Reponse;
  struct TMessage {
    std::string Texte, Titre;
  };
  std::vector<TMessage> Questions, Informations, Erreurs;
};

// Le dialogue courant ; jamais nul. InstalleDialogue(nullptr) remet celui par défaut.
TDialogue& Dialogue();
void InstalleDialogue(TDialogue* dialogue);

}  // namespace rqbase
