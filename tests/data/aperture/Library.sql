CREATE TABLE RKKeyword (modelId integer primary key, uuid varchar, name varchar, searchName varchar,
    parentId integer, hasChildren integer, shortcut varchar);
CREATE INDEX RKKeyword_uuid_index on RKKeyword(uuid);
CREATE INDEX RKKeyword_name_index on RKKeyword(name);
CREATE INDEX RKKeyword_searchName_index on RKKeyword(searchName);
CREATE INDEX RKKeyword_parentId_index on RKKeyword(parentId);
CREATE TABLE RKAlbumVersion (modelId integer primary key, versionId integer, albumId integer);
CREATE INDEX RKAlbumVersion_versionId_index on RKAlbumVersion(versionId);
CREATE INDEX RKAlbumVersion_albumId_versionId_index on RKAlbumVersion(albumId,versionId);
CREATE TABLE RKVersion (modelId integer primary key, uuid varchar, name varchar, fileName varchar,
    versionNumber integer, stackUuid varchar, masterUuid varchar, masterId integer, rawMasterUuid
    varchar, nonRawMasterUuid varchar, projectUuid varchar, imageTimeZoneName varchar, imageDate
    timestamp, mainRating integer, isHidden integer, isFlagged integer, isOriginal integer, isEditable
    integer, colorLabelIndex integer, masterHeight integer, masterWidth integer, processedHeight integer,
    processedWidth integer, rotation integer, hasAdjustments integer, hasEnabledAdjustments integer,
    hasNotes integer, createDate timestamp, exportImageChangeDate timestamp, exportMetadataChangeDate
    timestamp, isInTrash integer, thumbnailGroup varchar, overridePlaceId integer, exifLatitude decimal,
    exifLongitude decimal, renderVersion integer, adjSeqNum integer, supportedStatus integer,
    videoInPoint varchar, videoOutPoint varchar, videoPosterFramePoint varchar, showInLibrary integer,
    editState integer, contentVersion integer, propertiesVersion integer, rawVersion varchar,
    faceDetectionIsFromPreview integer, faceDetectionRotationFromMaster integer, editListData blob,
    hasKeywords integer);
CREATE INDEX RKVersion_uuid_index on RKVersion(uuid);
CREATE INDEX RKVersion_stackUuid_index on RKVersion(stackUuid);
CREATE INDEX RKVersion_masterUuid_index on RKVersion(masterUuid);
CREATE INDEX RKVersion_masterId_index on RKVersion(masterId);
CREATE INDEX RKVersion_rawMasterUuid_index on RKVersion(rawMasterUuid);
CREATE INDEX RKVersion_nonRawMasterUuid_index on RKVersion(nonRawMasterUuid);
CREATE INDEX RKVersion_isHidden_index on RKVersion(isHidden);
CREATE INDEX RKVersion_colorLabelIndex_index on RKVersion(colorLabelIndex);
CREATE INDEX RKVersion_hasEnabledAdjustments_index on RKVersion(hasEnabledAdjustments);
CREATE INDEX RKVersion_createDate_index on RKVersion(createDate);
CREATE INDEX RKVersion_isInTrash_index on RKVersion(isInTrash);
CREATE INDEX RKVersion_projectUuid_imageDate_index on RKVersion(projectUuid,imageDate);
CREATE TABLE RKStackState (modelId integer primary key, stackUuid varchar, albumUuid varchar, albumPick
    varchar, isExpanded integer);
CREATE INDEX RKStackState_stackUuid_index on RKStackState(stackUuid);
CREATE INDEX RKStackState_albumUuid_index on RKStackState(albumUuid);
CREATE INDEX RKStackState_albumUuid_stackUuid_index on RKStackState(albumUuid,stackUuid);
CREATE TABLE RKStackContent (modelId integer primary key, stackUuid varchar, versionUuid varchar,
    orderNumber integer);
CREATE INDEX RKStackContent_stackUuid_index on RKStackContent(stackUuid);
CREATE INDEX RKStackContent_versionUuid_index on RKStackContent(versionUuid);
CREATE INDEX RKStackContent_orderNumber_index on RKStackContent(orderNumber);
CREATE TABLE RKKeywordForVersion (modelId integer primary key, versionId integer, keywordId integer);
CREATE INDEX RKKeywordForVersion_versionId_index on RKKeywordForVersion(versionId);
CREATE INDEX RKKeywordForVersion_keywordId_versionId_index on RKKeywordForVersion(keywordId,versionId);
CREATE TABLE RKMaster (modelId integer primary key, uuid varchar, name varchar, projectUuid varchar,
    importGroupUuid varchar, fileVolumeUuid varchar, alternateMasterUuid varchar, originalVersionUuid
    varchar, originalVersionName varchar, fileName varchar, type varchar, subtype varchar,
    fileIsReference integer, isExternallyEditable integer, isTrulyRaw integer, isMissing integer,
    hasAttachments integer, hasNotes integer, hasFocusPoints integer, imagePath varchar, fileSize
    integer, pixelFormat integer, duration decimal, imageDate timestamp, fileCreationDate timestamp,
    fileModificationDate timestamp, streamAssetId varchar, streamSourceUuid varchar, burstUuid varchar,
    imageHash varchar, originalFileName varchar, originalFileSize integer, imageFormat integer,
    importedBy integer, createDate timestamp, isInTrash integer, faceDetectionState integer,
    colorSpaceName varchar, colorSpaceDefinition blob, fileAliasData blob);
CREATE INDEX RKMaster_uuid_index on RKMaster(uuid);
CREATE INDEX RKMaster_projectUuid_index on RKMaster(projectUuid);
CREATE INDEX RKMaster_importGroupUuid_index on RKMaster(importGroupUuid);
CREATE INDEX RKMaster_fileVolumeUuid_index on RKMaster(fileVolumeUuid);
CREATE INDEX RKMaster_alternateMasterUuid_index on RKMaster(alternateMasterUuid);
CREATE INDEX RKMaster_fileName_index on RKMaster(fileName);
CREATE INDEX RKMaster_type_index on RKMaster(type);
CREATE INDEX RKMaster_fileIsReference_index on RKMaster(fileIsReference);
CREATE INDEX RKMaster_isExternallyEditable_index on RKMaster(isExternallyEditable);
CREATE INDEX RKMaster_fileSize_index on RKMaster(fileSize);
CREATE INDEX RKMaster_fileCreationDate_index on RKMaster(fileCreationDate);
CREATE INDEX RKMaster_fileModificationDate_index on RKMaster(fileModificationDate);
CREATE INDEX RKMaster_streamAssetId_index on RKMaster(streamAssetId);
CREATE INDEX RKMaster_streamSourceUuid_index on RKMaster(streamSourceUuid);
CREATE INDEX RKMaster_burstUuid_index on RKMaster(burstUuid);
CREATE INDEX RKMaster_originalFileName_index on RKMaster(originalFileName);
CREATE INDEX RKMaster_originalFileSize_index on RKMaster(originalFileSize);
CREATE INDEX RKMaster_imageFormat_index on RKMaster(imageFormat);
CREATE INDEX RKMaster_createDate_index on RKMaster(createDate);
CREATE INDEX RKMaster_isInTrash_index on RKMaster(isInTrash);
CREATE INDEX RKMaster_faceDetectionState_index on RKMaster(faceDetectionState);
CREATE TABLE RKAdminData (modelId integer primary key, propertyArea varchar, propertyName varchar,
    propertyValue varchar, blobPropertyValue blob, storedDataType integer, persistAfterRebuild integer);
CREATE INDEX RKAdminData_propertyArea_index on RKAdminData(propertyArea);
CREATE INDEX RKAdminData_persistAfterRebuild_index on RKAdminData(persistAfterRebuild);
CREATE UNIQUE INDEX RKAdminData_propertyName_propertyArea_index on
    RKAdminData(propertyName,propertyArea);
CREATE TABLE RKCustomSortOrder (modelId integer primary key, containerUuid varchar, purpose varchar,
    objectUuid varchar, orderNumber integer);
CREATE INDEX RKCustomSortOrder_containerUuid_index on RKCustomSortOrder(containerUuid);
CREATE INDEX RKCustomSortOrder_objectUuid_index on RKCustomSortOrder(objectUuid);
CREATE INDEX RKCustomSortOrder_purpose_containerUuid_index on RKCustomSortOrder(purpose,containerUuid);
CREATE TABLE RKFolder (modelId integer primary key, uuid varchar, folderType integer, name varchar,
    parentFolderUuid varchar, implicitAlbumUuid varchar, posterVersionUuid varchar,
    automaticallyGenerateFullSizePreviews integer, versionCount integer, minImageTimeZoneName varchar,
    maxImageTimeZoneName varchar, minImageDate timestamp, maxImageDate timestamp, folderPath varchar,
    createDate timestamp, isExpanded integer, isHidden integer, isHiddenWhenEmpty integer, isFavorite
    integer, isInTrash integer, isMagic integer, colorLabelIndex integer, sortAscending integer,
    sortKeyPath varchar);
CREATE INDEX RKFolder_uuid_index on RKFolder(uuid);
CREATE INDEX RKFolder_folderType_index on RKFolder(folderType);
CREATE INDEX RKFolder_parentFolderUuid_index on RKFolder(parentFolderUuid);
CREATE INDEX RKFolder_folderPath_index on RKFolder(folderPath);
CREATE INDEX RKFolder_createDate_index on RKFolder(createDate);
CREATE INDEX RKFolder_isInTrash_index on RKFolder(isInTrash);
CREATE INDEX RKFolder_isMagic_index on RKFolder(isMagic);
CREATE INDEX RKFolder_name_parentFolderUuid_index on RKFolder(name,parentFolderUuid);
CREATE TABLE RKVolume (modelId integer primary key, uuid varchar, name varchar, diskUuid varchar, label
    varchar, isOffline integer, createDate timestamp, modDate timestamp);
CREATE INDEX RKVolume_uuid_index on RKVolume(uuid);
CREATE INDEX RKVolume_name_index on RKVolume(name);
CREATE INDEX RKVolume_diskUuid_index on RKVolume(diskUuid);
CREATE INDEX RKVolume_createDate_index on RKVolume(createDate);
CREATE INDEX RKVolume_modDate_index on RKVolume(modDate);
CREATE TABLE RKImageAdjustment (modelId integer primary key, uuid varchar, name varchar, versionUuid
    varchar, maskUuid varchar, adjIndex integer, isEnabled integer, data blob, dbVersion integer);
CREATE INDEX RKImageAdjustment_uuid_index on RKImageAdjustment(uuid);
CREATE INDEX RKImageAdjustment_name_index on RKImageAdjustment(name);
CREATE INDEX RKImageAdjustment_versionUuid_index on RKImageAdjustment(versionUuid);
CREATE INDEX RKImageAdjustment_maskUuid_index on RKImageAdjustment(maskUuid);
CREATE INDEX RKImageAdjustment_isEnabled_index on RKImageAdjustment(isEnabled);
CREATE TABLE RKAlbum (modelId integer primary key, uuid varchar, albumType integer, albumSubclass
    integer, serviceName varchar, serviceAccountName varchar, serviceFullName varchar, name varchar,
    folderUuid varchar, queryFolderUuid varchar, posterVersionUuid varchar, selectedTrackPathUuid
    varchar, sortKeyPath varchar, sortAscending integer, customSortAvailable integer, versionCount
    integer, createDate timestamp, isFavorite integer, isInTrash integer, isHidden integer, isMagic
    integer, publishSyncNeeded integer, colorLabelIndex integer, faceSortKeyPath varchar,
    recentUserChangeDate timestamp, filterData blob, queryData blob, viewData blob, selectedVersionIds
    blob);
CREATE INDEX RKAlbum_uuid_index on RKAlbum(uuid);
CREATE INDEX RKAlbum_albumSubclass_index on RKAlbum(albumSubclass);
CREATE INDEX RKAlbum_serviceName_index on RKAlbum(serviceName);
CREATE INDEX RKAlbum_folderUuid_index on RKAlbum(folderUuid);
CREATE INDEX RKAlbum_queryFolderUuid_index on RKAlbum(queryFolderUuid);
CREATE INDEX RKAlbum_createDate_index on RKAlbum(createDate);
CREATE INDEX RKAlbum_isInTrash_index on RKAlbum(isInTrash);
CREATE INDEX RKAlbum_recentUserChangeDate_index on RKAlbum(recentUserChangeDate);
CREATE INDEX RKAlbum_name_folderUuid_index on RKAlbum(name,folderUuid);