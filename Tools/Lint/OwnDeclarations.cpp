#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/FrontendAction.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

// A plug-in of clang-tidy: its checks look at the project's declarations only. Left alone, each
// walks through all that the system's headers declare, four fifths of the time, to drop what it
// finds there.

namespace {

class OwnDeclarations final : public clang::ASTConsumer {
 public:
  void HandleTranslationUnit(clang::ASTContext& context) override {
    const clang::SourceManager& sources = context.getSourceManager();
    std::vector<clang::Decl*> own;
    for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
      if (!sources.isInSystemHeader(sources.getExpansionLoc(declaration->getLocation()))) {
        own.push_back(declaration);
      }
    }
    context.setTraversalScope(own);
  }
};

class OwnDeclarationsAction final : public clang::PluginASTAction {
 public:
  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& /*compiler*/,
                                                        llvm::StringRef /*file*/) override {
    return std::make_unique<OwnDeclarations>();
  }
  bool ParseArgs(const clang::CompilerInstance& /*compiler*/,
                 const std::vector<std::string>& /*arguments*/) override {
    return true;
  }
  ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<OwnDeclarationsAction> registration(
    "own-declarations", "the checks see the project's declarations only");

}  // namespace
