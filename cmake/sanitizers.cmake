# ASan + UBSan for every target of the tree when VNXML_SANITIZE is on.
if(VNXML_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
