#pragma once
// Where a program finds the files shipped with it (the stop list, the sample corpus). An
// installed program looks in the data folder of its install tree, reached from its own folder
// ("<prefix>/bin" -> "<prefix>/share/sylvora"), so an install tree moved elsewhere keeps
// working; a program run from its build folder looks in the source tree's data folder.

#include <string>
#include <vector>

namespace sylvora {

// The folder of the running executable, or an empty text when it cannot be told.
std::string ProgramFolder();

// The folders that may hold the shipped files, best first: the install tree's data folder
// relative to `programFolder`, then the source tree's data folder when `programFolder` lies
// in this build's tree (a copied or installed program never reads the source tree).
std::vector<std::string> DataFolders(const std::string& programFolder);

// The path of `name` in the first of DataFolders(programFolder) that holds it, or empty.
std::string FindDataFile(const std::string& name, const std::string& programFolder);

// FindDataFile for the running executable.
std::string FindDataFile(const std::string& name);

}  // namespace sylvora
