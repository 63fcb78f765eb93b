# Run as a script: writes OUTPUT, a source file that holds the text of every file of INPUTS (a list whose
# places are separated by "|").
string(REPLACE "|" ";" inputs "${INPUTS}")
set(source "#include \"platform/simulated/EmbeddedMachines.h\"\n\n")
string(APPEND source "namespace ventolith::simulated {\n\nstd::vector<EmbeddedMachine> embeddedMachines() {\n  return {\n")
foreach(input IN LISTS inputs)
  get_filename_component(name "${input}" NAME_WE)
  file(READ "${input}" text)
  string(APPEND source "      {\"${name}\", R\"machine(${text})machine\"},\n")
endforeach()
string(APPEND source "  };\n}\n\n} // namespace ventolith::simulated\n")
file(WRITE "${OUTPUT}" "${source}")
