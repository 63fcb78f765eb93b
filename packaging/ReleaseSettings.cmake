# What a build that is given away carries, unless it is given something else with -D. A vendor replaces all of it: the
# addresses are reserved names that lead nowhere, and nobody can sign for the key, whose secret half was destroyed when
# it was made. scripts/make-update-key makes another. It has to be replaced before the first release: copies that are
# out can be updated with its key alone.
function(release_setting name value)
  if("${${name}}" STREQUAL "")
    set(${name} "${value}" PARENT_SCOPE)
  endif()
endfunction()

release_setting(VENTOLITH_UPDATE_FEED_URL "https://updates.ventolith.example/appcast.xml")
release_setting(VENTOLITH_UPDATE_PUBLIC_KEY "ukUTgejzvdxD5/ozFVMkJbyAr01kt63bD9gSz4dW7Pg=")
release_setting(VENTOLITH_UPDATE_CHANNEL "stable")
release_setting(VENTOLITH_SUPPORT_URL "https://www.ventolith.example/support")
release_setting(VENTOLITH_MAINTAINER "The Ventolith developers <maintainers@ventolith.example>")
